#include "Platform/DataModel/File/Circles.h"

#include <algorithm>

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::DataModel {

unsigned long long
idOnCircle(std::vector<std::pair<unsigned long long, unsigned long long>> const & ownerships) {
    // What owns nothing lies on no circle.
    std::vector<unsigned long long> nodes;
    nodes.reserve(ownerships.size());
    for (auto const & [from, to] : ownerships) nodes.push_back(from);
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    auto const indexOf = [&](unsigned long long id) {
        return static_cast<std::size_t>(std::lower_bound(nodes.begin(), nodes.end(), id) -
                                        nodes.begin());
    };
    std::vector<std::pair<std::size_t, std::size_t>> edges;
    std::vector<std::size_t> owners(nodes.size(), 0); // how many are left of each
    for (auto const & [from, to] : ownerships) {
        std::size_t const target = indexOf(to);
        if (target == nodes.size() || nodes[target] != to) continue;
        edges.emplace_back(indexOf(from), target);
        ++owners[target];
    }
    std::sort(edges.begin(), edges.end());

    // Whatever nobody owns is taken away, again and again.  What remains hangs on a circle.
    std::vector<std::size_t> free;
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (owners[i] == 0) free.push_back(i);
    std::size_t left = nodes.size();
    while (!free.empty()) {
        std::size_t const node = free.back();
        free.pop_back();
        --left;
        for (auto i = std::lower_bound(edges.begin(), edges.end(), std::pair(node, std::size_t{0}));
             i != edges.end() && i->first == node; ++i)
            if (--owners[i->second] == 0) free.push_back(i->second);
    }
    if (left == 0) return 0;

    // From one of the rest back along owners, as many steps as there can be: that ends on the
    // circle.
    std::vector<std::size_t> owner(nodes.size(), 0);
    std::size_t node = 0;
    for (auto const & [from, to] : edges)
        if (owners[from] > 0 && owners[to] > 0) {
            owner[to] = from;
            node = to;
        }
    for (std::size_t i = 0; i < nodes.size(); ++i) node = owner[node];
    return nodes[node];
}

std::string circleText(unsigned long long id) {
    return localized("entity %1% owns itself in a circle", id);
}

namespace {

// That a file would have.
Entity * parentOf(Entity & entity) {
    Leaf const * const leaf = entity.metaType()->layout().parent();
    if (!leaf) return nullptr;
    Entity * const parent = static_cast<PassiveRef<Entity> const *>(field(entity, *leaf))->get();
    bool const isSaved =
        parent && parent->asset() == entity.asset() && !parent->segment()->isTransient();
    return isSaved ? parent : nullptr;
}

} // namespace

Entity const * ParentWalk::onCircle(Entity & entity) {
    Entity * parent = parentOf(entity);
    if (parent == m_pLast) return nullptr; // siblings mostly come one after the other
    m_pLast = parent;
    for (++m_walk; parent; parent = parentOf(*parent)) {
        auto const [met, isNew] = m_met.emplace(parent, m_walk);
        if (!isNew) return met->second == m_walk ? parent : nullptr;
    }
    return nullptr;
}

std::string parentCircleText(unsigned long long id) {
    return localized("the parents of entity %1% lead in a circle", id);
}

} // namespace Vn::DataModel
