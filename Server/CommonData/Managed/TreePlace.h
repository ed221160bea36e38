// Places in the managed tree of a document: finding them, and moving what stands there.

#ifndef VN_SERVER_COMMONDATA_MANAGED_TREEPLACE_H
#define VN_SERVER_COMMONDATA_MANAGED_TREEPLACE_H

#include <cstddef>
#include <string_view>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn {
class Segment;
}

namespace Vn::Managed {

// An entity, and the list in which it stands there.  More than one group may list an entity.
struct TreePlace {
    // What stands there, and the group that lists it, which is null for a root.
    StrongRef<Entity> entity;
    StrongRef<ManagedGroupEntity> group;
};

// The place at which an entity stands by its parent: in that group, or as a root.
VN_COMMONDATA_API TreePlace placeOf(StrongRef<Entity> const & entity);

// Whether an entity is `above` or stands below it, by its parents.  Parents that lead in a circle
// are all within each other.
VN_COMMONDATA_API bool isWithin(Entity const & entity, Entity const & above);

// Which of its siblings a name of a path means: that of "CmnData[2]", and of "2" alone, is 2; -1 if
// the name is another.
VN_COMMONDATA_API int siblingIndex(Onk const & onk);

// Why a path leads nowhere.
enum class EPathFault {
    None,
    NoRoot,    // the segment has no root of the first name
    NotAGroup, // what the names lead to until then has no children
    NoChild,   // the group has no child of that name
    EmptyPlace // what stood there wasn't saved
};

// How far a path leads.
struct VN_COMMONDATA_API PathEnd {
    // The place at the end, or the last one on the way; without an entity if there is no root.
    TreePlace place;
    // How many of the names lead there.
    std::size_t onks = 0;
    // What is wrong with the name after them.
    EPathFault fault = EPathFault::None;

    // Whether the path leads to an entity.
    explicit operator bool() const noexcept { return fault == EPathFault::None; }
    // The same as a status, NotFound unless it is success, which tells the path as its subject.
    Status status(ObjectPath const & path) const;
};

// Follows a path from the roots of a segment through the lists of groups.  The names after the
// first are those of children, as siblingIndex reads them.  An empty path has no root.
VN_COMMONDATA_API PathEnd followPath(Segment const & segment, ObjectPath const & path);

// Where an entity that is moved comes to stand, seen from another entity.
enum class EMove {
    Before, // in front of the other, in its group
    After,  // right after the other, in its group
    Into    // the other is a group, and its last child is to be the entity
};

// Why an entity can't be moved.
enum class EMoveFault {
    None,
    Dead,          // one of the two is null, isn't alive, or is in no document
    OtherDocument, // they are in different documents
    Same,          // they are the same entity
    Root,          // the entity stands in no group
    NotAGroup,     // what it is to go into
    NoSiblings,    // the other stands in no group
    Foreign,       // the group isn't the parent of the entity, or doesn't list it
    TargetForeign, // the same of the other
    Within         // the group that it is to go to is the entity or stands below it
};

// Whether an entity can be moved; the first of the faults above that there is.
VN_COMMONDATA_API EMoveFault whyNotMove(TreePlace const & moved, EMove where,
                                        TreePlace const & target);

// Moves an entity, as one step of the history that bears that name; within a transaction it is a
// part of that.  Nothing changes if it stands there already.
//
// What can't be moved gives StatusInvalidArgument with the reason, and nothing has changed.  If a
// hook throws, or if memory runs out, all is taken back and the exception goes to the caller.
VN_COMMONDATA_API Status moveEntity(TreePlace const & moved, EMove where, TreePlace const & target,
                                    std::wstring_view stepName);
// The same for an entity and a target where they stand by their parents.
VN_COMMONDATA_API Status moveEntity(StrongRef<Entity> const & moved, EMove where,
                                    StrongRef<Entity> const & target, std::wstring_view stepName);

} // namespace Vn::Managed

#endif
