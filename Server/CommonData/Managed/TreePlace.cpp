#include "Server/CommonData/Managed/TreePlace.h"

#include <algorithm>
#include <string>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Managed/Ancestors.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"

namespace Vn::Managed {

using ManagedEntityUtils::c_childName;
using ManagedEntityUtils::parentOf;

namespace {

bool isUsable(StrongRef<Entity> const & entity) {
    return entity && entity->isAlive() && entity->asset();
}

bool isForeign(TreePlace const & place) {
    auto const * const managed = query<ManagedEntity>(place.entity.get());
    if (!managed || !(managed->managedParent() == place.group)) return true;
    auto const & children = place.group->childrenVector();
    return std::find(children.begin(), children.end(), managed) == children.end();
}

StrongRef<ManagedGroupEntity> groupOf(EMove where, TreePlace const & target) {
    if (where != EMove::Into) return target.group;
    return StrongRef<ManagedGroupEntity>(query<ManagedGroupEntity>(target.entity.get()));
}

char const * textOf(EMoveFault fault) {
    switch (fault) {
    case EMoveFault::None:
        break;
    case EMoveFault::Dead:
        return localizable("it or what it is to go to isn't alive");
    case EMoveFault::OtherDocument:
        return localizable("what it is to go to is in another document");
    case EMoveFault::Same:
        return localizable("an entity has no place beside or within itself");
    case EMoveFault::Root:
        return localizable("it stands in no group");
    case EMoveFault::NotAGroup:
        return localizable("what it is to go into isn't a group");
    case EMoveFault::NoSiblings:
        return localizable("what it is to stand beside is in no group");
    case EMoveFault::Foreign:
        return localizable("its group isn't its parent, or doesn't list it");
    case EMoveFault::TargetForeign:
        return localizable(
            "the group of what it is to stand beside isn't the parent of that, or doesn't list "
            "it");
    case EMoveFault::Within:
        return localizable("what it is to go to stands within it");
    }
    return "";
}

} // namespace

TreePlace placeOf(StrongRef<Entity> const & entity) {
    auto const * const managed = query<ManagedEntity>(entity.get());
    bool const isRoot =
        !managed || !entity->segment() || entity->segment()->rootKey(entity.get()) != nullptr;
    return {entity, isRoot ? nullptr : managed->managedParent()};
}

bool isWithin(Entity const & entity, Entity const & above) {
    if (&entity == &above) return true;
    AncestorWalk walk(parentOf(entity));
    while (walk && !(walk.at() == &above)) walk.goTo(parentOf(*walk));
    return static_cast<bool>(walk);
}

int siblingIndex(Onk const & onk) {
    if (onk.strName() == c_childName) return onk.repAsInt();
    Onk number;
    if (onk.rep().empty()) number.rep(onk.strName());
    return number.repAsInt();
}

Status PathEnd::status(ObjectPath const & path) const {
    constexpr char c_operation[] = "find the entity";
    std::string const subject = Text::toUtf8(path.toString());
    switch (fault) {
    case EPathFault::None:
        break;
    case EPathFault::NoRoot:
        return Status::notFound(c_operation, subject, localized("there is no such root"));
    case EPathFault::NotAGroup:
        return Status::notFound(
            c_operation, subject,
            localized("what stands on the way isn't a group and has no children"));
    case EPathFault::NoChild:
        return Status::notFound(c_operation, subject, localized("there is no such child"));
    case EPathFault::EmptyPlace:
        return Status::notFound(c_operation, subject, localized("what stood there wasn't saved"));
    }
    return Status::success();
}

PathEnd followPath(Segment const & segment, ObjectPath const & path) {
    PathEnd end;
    auto const & onks = path.onks();
    if (!onks.empty() && onks.front().rep().empty())
        end.place.entity = segment.rootEntity(Text::toUtf8(onks.front().strName()));
    if (!end.place.entity) {
        end.fault = EPathFault::NoRoot;
        return end;
    }
    for (end.onks = 1; end.onks < onks.size(); ++end.onks) {
        StrongRef<ManagedGroupEntity> const group(
            query<ManagedGroupEntity>(end.place.entity.get()));
        int const index = siblingIndex(onks[end.onks]);
        if (!group)
            end.fault = EPathFault::NotAGroup;
        else if (index < 0 || static_cast<unsigned>(index) >= group->children())
            end.fault = EPathFault::NoChild;
        else if (!group->child(static_cast<unsigned>(index)))
            end.fault = EPathFault::EmptyPlace;
        if (end.fault != EPathFault::None) break;
        end.place = {group->child(static_cast<unsigned>(index)), group};
    }
    return end;
}

EMoveFault whyNotMove(TreePlace const & moved, EMove where, TreePlace const & target) {
    if (!isUsable(moved.entity) || !isUsable(target.entity)) return EMoveFault::Dead;
    if (moved.entity->asset() != target.entity->asset()) return EMoveFault::OtherDocument;
    if (moved.entity == target.entity) return EMoveFault::Same;
    if (!moved.group) return EMoveFault::Root;
    StrongRef<ManagedGroupEntity> const group = groupOf(where, target);
    if (!group) return where == EMove::Into ? EMoveFault::NotAGroup : EMoveFault::NoSiblings;
    if (isForeign(moved)) return EMoveFault::Foreign;
    if (where != EMove::Into && isForeign(target)) return EMoveFault::TargetForeign;
    if (isWithin(*group, *moved.entity)) return EMoveFault::Within;
    return EMoveFault::None;
}

Status moveEntity(TreePlace const & moved, EMove where, TreePlace const & target,
                  std::wstring_view stepName) {
    EMoveFault const fault = whyNotMove(moved, where, target);
    if (fault != EMoveFault::None) {
        std::string const subject =
            moved.entity ? Text::toUtf8(ManagedEntityUtils::objectPath(*moved.entity).toString())
                         : std::string();
        return Status::invalidArgument("move the entity", subject, localized(textOf(fault)));
    }
    // Hooks may let go of any of them.
    StrongRef<ManagedGroupEntity> const from = moved.group;
    StrongRef<ManagedGroupEntity> const to = groupOf(where, target);
    StrongRef<ManagedEntity> const child(query<ManagedEntity>(moved.entity.get()));
    StrongRef<ManagedEntity> const sibling(query<ManagedEntity>(target.entity.get()));
    StrongRef<Asset> const asset(child->asset());
    Transaction transaction(*asset, stepName);
    // Into its own group it goes after its siblings.
    if (!(to == from) || (where == EMove::Into && !(to->childrenVector().back() == child))) {
        from->removeChild(child);
        child->nullParent();
        to->addChild(child);
    }
    if (where != EMove::Into)
        ManagedEntityUtils::reorderEntity(child, sibling, where == EMove::After);
    transaction.commit();
    return Status::success();
}

Status moveEntity(StrongRef<Entity> const & moved, EMove where, StrongRef<Entity> const & target,
                  std::wstring_view stepName) {
    return moveEntity(placeOf(moved), where, placeOf(target), stepName);
}

} // namespace Vn::Managed
