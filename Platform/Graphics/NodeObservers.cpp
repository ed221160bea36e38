#include "Platform/Graphics/NodeObservers.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <stdexcept>

namespace Vrx::Graphics {

namespace {

constinit std::atomic<std::size_t> s_subscriptions{0};

} // namespace

INodeObserver::~INodeObserver() = default;

Vn::StrongRefCreator<NodeObservers> NodeObservers::make() {
    return Vn::StrongRefCreator<NodeObservers>(new NodeObservers);
}

NodeObservers::~NodeObservers() {
    s_subscriptions.fetch_sub(observers(), std::memory_order_relaxed);
}

void NodeObservers::subscribe(INodeObserver * observer) {
    if (!observer) return;
    if (std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end()) return;
    m_observers.push_back(observer);
    s_subscriptions.fetch_add(1, std::memory_order_relaxed);
}

// While observers are told, the places of all stay as they are.
void NodeObservers::unsubscribe(INodeObserver * observer) noexcept {
    if (!observer) return;
    auto const place = std::find(m_observers.begin(), m_observers.end(), observer);
    if (place == m_observers.end()) return;
    s_subscriptions.fetch_sub(1, std::memory_order_relaxed);
    *place = nullptr;
    if (m_telling == 0) m_observers.erase(place);
}

std::size_t NodeObservers::observers() const noexcept {
    return m_observers.size() -
           static_cast<std::size_t>(std::count(m_observers.begin(), m_observers.end(), nullptr));
}

void NodeObservers::tell(std::span<ChangedNode const> nodes) noexcept {
    std::size_t const count = m_observers.size();
    ++m_telling;
    for (std::size_t i = 0; i < count; ++i) {
        try {
            if (m_observers[i]) m_observers[i]->nodesChanged(nodes);
        } catch (...) {} // the change is made, and the others are to hear of it
    }
    if (--m_telling == 0) std::erase(m_observers, nullptr);
}

NodeChanges::~NodeChanges() { forgetNotes(); }

bool NodeChanges::anybodyListens() noexcept {
    return s_subscriptions.load(std::memory_order_relaxed) > 0;
}

void NodeChanges::reserve(std::size_t notes) {
    if (notes > m_changes.capacity()) m_changes.reserve(std::max(notes, 2 * m_changes.capacity()));
}

void NodeChanges::note(ARenderNode * node, int changes) noexcept {
    if (!node) return;
    bool const isNoted = node->m_note > 0 && node->m_note <= m_changes.size() &&
                         m_changes[node->m_note - 1].node() == node;
    if (!isNoted) {
        if (m_changes.size() == m_changes.capacity() ||
            m_changes.size() == std::numeric_limits<std::uint32_t>::max())
            return;
        m_changes.emplace_back().m_rNode = Vn::StrongRef<ARenderNode>(node);
        node->m_note = static_cast<std::uint32_t>(m_changes.size());
    }
    m_changes[node->m_note - 1].m_changes |= changes;
}

// Finds the nearest group with observers.  What was found is kept at each node on the way, so that
// no way is gone twice: a node that didn't change gets the number of the change that passed it.
void NodeChanges::resolve(ChangedNode & change) noexcept {
    auto const changeOf = [this](ARenderNode const & node) {
        return node.m_note ? &m_changes[node.m_note - 1] : nullptr;
    };
    NodeObservers * found = nullptr;
    ARenderNode * node = change.node();
    for (; node; node = node->m_pParent) {
        GroupNode const * const group = node->asGroup();
        ChangedNode const * const known = changeOf(*node);
        if (group && group->observers()) found = group->observers();
        if (known && known->m_bResolved) found = known->m_rObservers.get();
        if (found || (known && known->m_bResolved)) break;
    }
    ARenderNode * const end = node ? node->m_pParent : nullptr;
    auto const number = static_cast<std::uint32_t>(&change - m_changes.data()) + 1;
    for (node = change.node(); node != end; node = node->m_pParent) {
        ChangedNode * const known = changeOf(*node);
        if (!known) {
            node->m_note = number;
        } else if (!known->m_bResolved) {
            known->m_bResolved = true;
            known->m_rObservers = Vn::StrongRef<NodeObservers>(found);
        }
    }
}

// The numbers stand without gaps from each node that changed up to where its way ended.
void NodeChanges::forgetNotes() noexcept {
    for (ChangedNode const & change : m_changes)
        for (ARenderNode * node = change.node(); node && node->m_note; node = node->m_pParent)
            node->m_note = 0;
}

void NodeChanges::tell() noexcept {
    for (ChangedNode & change : m_changes)
        if (!change.m_bResolved) resolve(change);
    forgetNotes();
    std::vector<ChangedNode> told = std::move(m_changes);
    m_changes.clear();
    std::erase_if(told, [](ChangedNode const & change) { return !change.m_rObservers; });
    // Those of one graph side by side, without disorder among them.
    auto const isLess = [](ChangedNode const & a, ChangedNode const & b) {
        return a.m_rObservers < b.m_rObservers;
    };
    std::stable_sort(told.begin(), told.end(), isLess);
    for (auto begin = told.begin(); begin != told.end();) {
        auto const end = std::upper_bound(begin, told.end(), *begin, isLess);
        begin->m_rObservers->tell({begin, end});
        begin = end;
    }
}

} // namespace Vrx::Graphics
