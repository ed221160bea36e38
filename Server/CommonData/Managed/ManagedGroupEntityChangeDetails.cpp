#include "Server/CommonData/Managed/ManagedGroupEntityChangeDetails.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <span>
#include <utility>

#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::Managed {

namespace {

using Children = std::vector<ManagedEntity *>;
using Stretch = std::span<ManagedEntity * const>;

Children targets(std::vector<StrongRef<ManagedEntity>> const & children) {
    Children raw;
    raw.reserve(children.size());
    for (StrongRef<ManagedEntity> const & child : children) raw.push_back(child.get());
    return raw;
}

// Two lists, taken apart into what they have in common at both ends and what lies between, since
// most changes concern a few neighbours in a list that may be long.
struct Comparison {
    Comparison(Children const & before, Children const & after) {
        auto const ends = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
        m_head = Stretch(before.begin(), ends.first);
        auto const tails = std::mismatch(before.rbegin(), std::make_reverse_iterator(ends.first),
                                         after.rbegin(), std::make_reverse_iterator(ends.second));
        m_tail = Stretch(tails.first.base(), before.end());
        m_before = Stretch(ends.first, tails.first.base());
        m_after = Stretch(ends.second, tails.second.base());
    }

    Stretch m_head;
    Stretch m_before;
    Stretch m_after;
    Stretch m_tail;
};

Children sorted(Stretch stretch) {
    Children all(stretch.begin(), stretch.end());
    std::sort(all.begin(), all.end(), std::less<>());
    return all;
}

// How often children stand in a list, sorted by child.
struct Tally {
    ManagedEntity * child;
    std::size_t count;
};

// What stands in `a` more often than in `b`, and how much more often; both are sorted.
std::vector<Tally> difference(Children const & a, Children const & b) {
    std::vector<Tally> rest;
    auto i = a.begin();
    auto j = b.begin();
    while (i != a.end()) {
        auto const next = std::upper_bound(i, a.end(), *i, std::less<>());
        j = std::lower_bound(j, b.end(), *i, std::less<>());
        auto const after = std::upper_bound(j, b.end(), *i, std::less<>());
        if (next - i > after - j)
            rest.push_back({*i, static_cast<std::size_t>((next - i) - (after - j))});
        i = next;
    }
    return rest;
}

Tally * tallyOf(std::vector<Tally> & tallies, ManagedEntity * child) {
    auto const found = std::lower_bound(
        tallies.begin(), tallies.end(), child,
        [](Tally const & a, ManagedEntity * b) { return std::less<>()(a.child, b); });
    return found != tallies.end() && found->child == child ? &*found : nullptr;
}

bool contains(Children const & all, ManagedEntity * child) {
    return std::binary_search(all.begin(), all.end(), child, std::less<>());
}

// The children of a sorted list that stand neither in another nor at the common ends.
Children missing(Children const & wanted, Children const & other, Comparison const & lists) {
    std::vector<Tally> rest;
    for (ManagedEntity * const child : wanted)
        if ((rest.empty() || rest.back().child != child) && !contains(other, child))
            rest.push_back({child, 1});
    // A child may be listed more than once.
    std::size_t left = rest.size();
    for (Stretch const end : {lists.m_head, lists.m_tail})
        for (std::size_t i = 0; left && i < end.size(); ++i) {
            Tally * const found = tallyOf(rest, end[i]);
            if (found) left -= std::exchange(found->count, 0);
        }
    Children children;
    for (Tally const & tally : rest)
        if (tally.count) children.push_back(tally.child);
    return children;
}

} // namespace

ManagedGroupEntityChangeDetails::ManagedGroupEntityChangeDetails(
    StrongRef<ManagedEntity> const & managedEntity, EType changeType, unsigned insertionIndex)
    : m_rManagedEntity(managedEntity), m_changeType(changeType), m_insertionIndex(insertionIndex) {}

ManagedGroupEntityChangeDetails::ManagedGroupEntityChangeDetails(
    ManagedGroupEntityChangeDetails const & other) = default;
ManagedGroupEntityChangeDetails &
ManagedGroupEntityChangeDetails::operator=(ManagedGroupEntityChangeDetails const & other) = default;
ManagedGroupEntityChangeDetails::~ManagedGroupEntityChangeDetails() = default;

DataChange * ManagedGroupEntityChangeDetails::onClone() const {
    return new ManagedGroupEntityChangeDetails(*this);
}

std::string ManagedGroupEntityChangeDetails::onToString() const {
    return "ManagedGroupEntityChangeDetails";
}

ManagedGroupEntityTransactChangeDetails::ManagedGroupEntityTransactChangeDetails(
    std::vector<StrongRef<ManagedEntity>> const & children)
    : m_snapshot(targets(children)) {}

ManagedGroupEntityTransactChangeDetails::ManagedGroupEntityTransactChangeDetails(
    ManagedGroupEntityTransactChangeDetails const & other) = default;
ManagedGroupEntityTransactChangeDetails & ManagedGroupEntityTransactChangeDetails::operator=(
    ManagedGroupEntityTransactChangeDetails const & other) = default;
ManagedGroupEntityTransactChangeDetails::~ManagedGroupEntityTransactChangeDetails() = default;

void ManagedGroupEntityTransactChangeDetails::calculateChildrenDiff(
    std::vector<StrongRef<ManagedEntity>> const & now) {
    Children current = targets(now);
    if (current == m_snapshot) return;
    Comparison const lists(m_snapshot, current);
    Children const before = sorted(lists.m_before);
    Children const after = sorted(lists.m_after);
    Children const fresh = missing(after, before, lists);

    if (current.size() == m_snapshot.size() && fresh.empty() &&
        missing(before, after, lists).empty()) {
        m_added = std::move(current);
        m_removed = m_snapshot;
        std::erase(m_removed, nullptr);
        return;
    }

    // Of a child that is listed less often than before, the later places count as those that are
    // gone.
    Children removed;
    std::vector<Tally> gone = difference(before, after);
    std::size_t left = 0;
    for (Tally const & tally : gone) left += tally.count;
    removed.reserve(left);
    for (auto i = m_snapshot.rbegin(); removed.size() < left; ++i) {
        Tally * const found = tallyOf(gone, *i);
        if (!found || !found->count) continue;
        removed.push_back(*i);
        --found->count;
    }
    std::reverse(removed.begin(), removed.end());
    std::erase(removed, nullptr);
    m_removed = std::move(removed);

    for (ManagedEntity *& child : current)
        if (!contains(fresh, child)) child = nullptr;
    m_added = std::move(current);
}

DataChange * ManagedGroupEntityTransactChangeDetails::onClone() const {
    return new ManagedGroupEntityTransactChangeDetails(*this);
}

std::string ManagedGroupEntityTransactChangeDetails::onToString() const {
    return "ManagedGroupEntityTransactChangeDetails";
}

} // namespace Vn::Managed
