#ifndef VN_SERVER_COMMONDATA_MANAGED_MANAGEDENTITYUTILS_H
#define VN_SERVER_COMMONDATA_MANAGED_MANAGEDENTITYUTILS_H

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Server/CommonData/Export.h"

namespace Vn::Managed {

class ICustomGroupChild;
class ManagedEntity;

// Operations on the managed tree that belong to no class of it.
namespace ManagedEntityUtils {

// The word by which paths name the children of groups.
inline constexpr wchar_t c_childName[] = L"CmnData";

// The parent of an entity in the managed tree; null if it has none, or isn't in that tree.
VN_COMMONDATA_API StrongRef<Entity> parentOf(Entity const & entity);

// Moves a child before or, with `insertAfter`, after another.  If the other has another parent,
// the child moves across and keeps its own as its parent.  Nothing happens if one of the two is
// null or isn't listed by its parent, or if the child is there already.
VN_COMMONDATA_API void reorderEntity(StrongRef<ManagedEntity> moved,
                                     StrongRef<ManagedEntity> target, bool insertAfter);

// The same for members of custom groups, by the lists of their group parents.
VN_COMMONDATA_API void reorderGroupedEntity(ICustomGroupChild * moved, ICustomGroupChild * target,
                                            bool insertAfter);

// The way to an entity from the root above it; empty if there is none.
VN_COMMONDATA_API ObjectPath objectPath(Entity const & entity);

} // namespace ManagedEntityUtils

} // namespace Vn::Managed

#endif
