#include "Server/CommonData/Managed/ManagedEntityUtils.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "Platform/Base/InterfaceId.h"
#include "Server/CommonData/Managed/ICustomGroup.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::Managed::ManagedEntityUtils {

namespace {

using Index = std::ptrdiff_t;

std::optional<Index> place(ManagedGroupEntity const & group,
                           StrongRef<ManagedEntity> const & child) {
    auto const & children = group.childrenVector();
    auto const found = std::find(children.begin(), children.end(), child);
    if (found == children.end()) return std::nullopt;
    return found - children.begin();
}

std::optional<Index> place(ICustomGroupParent const & group, ICustomGroupChild const * child) {
    unsigned const count = group.groupChildren();
    for (unsigned i = 0; i < count; ++i)
        if (group.groupChild(i) == child) return static_cast<Index>(i);
    return std::nullopt;
}

// The place for a child that leaves the place `moved` and goes before or after the one at
// `target`; none if it is there already.  Taking it out shifts whatever stands after it.
std::optional<Index> newPlace(Index moved, Index target, bool insertAfter) {
    Index place = target;
    if (insertAfter) {
        if (target < moved) place = target + 1;
    } else if (target >= moved) {
        if (target <= moved + 1) return std::nullopt;
        place = target - 1;
    }
    if (place == moved) return std::nullopt;
    return place;
}

} // namespace

StrongRef<Entity> parentOf(Entity const & entity) {
    auto const * const managed = query<ManagedEntity>(&entity);
    return managed ? managed->parent() : nullptr;
}

void reorderEntity(StrongRef<ManagedEntity> moved, StrongRef<ManagedEntity> target,
                   bool insertAfter) {
    if (!moved || !target) return;
    StrongRef<ManagedGroupEntity> const movedParent = moved->managedParent();
    StrongRef<ManagedGroupEntity> const targetParent = target->managedParent();
    if (!movedParent || !targetParent) return;
    auto const t = place(*targetParent, target);
    if (!t) return;
    auto const m = place(*movedParent, moved);
    if (!m) return;
    auto const n = newPlace(*m, *t, insertAfter);
    if (!n) return;
    // An observer that is told of this may shorten the other list, and the insertion then goes to
    // its end.
    movedParent->removeChild(moved);
    targetParent->insertChild(moved, static_cast<unsigned>(*n));
}

void reorderGroupedEntity(ICustomGroupChild * moved, ICustomGroupChild * target, bool insertAfter) {
    if (!moved || !target) return;
    ICustomGroupParent * const movedParent = moved->groupParent();
    ICustomGroupParent * const targetParent = target->groupParent();
    if (!movedParent || !targetParent) return;
    // An observer that is told of the removal may let go of any of them.
    StrongRef<Entity> const heldChild(query<Entity>(moved));
    StrongRef<Entity> const heldParent(query<Entity>(targetParent));
    auto const t = place(*targetParent, target);
    if (!t) return;
    auto const m = place(*movedParent, moved);
    if (!m) return;
    auto const n = newPlace(*m, *t, insertAfter);
    if (!n) return;
    // As in reorderEntity.
    movedParent->removeGroupChild(moved);
    targetParent->insertGroupChild(moved, static_cast<unsigned>(*n));
}

ObjectPath objectPath(Entity const & entity) { return ObjectPath::of(entity, &parentOf); }

} // namespace Vn::Managed::ManagedEntityUtils
