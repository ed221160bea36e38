#ifndef VN_PLATFORM_DATAMODEL_IENTITYOBSERVER_H
#define VN_PLATFORM_DATAMODEL_IENTITYOBSERVER_H

#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Entity;

// An observer of one entity.  An observer may subscribe and unsubscribe observers,
// itself included, while it is told.
class VN_DATAMODEL_API IEntityObserver {
public:
    virtual ~IEntityObserver();

    // Before and after a change; details may be null.
    virtual void preChange(Entity * entity, DataChange::ETransact transact,
                           DataChange::EChangeType type, DataChange * details) = 0;
    virtual void postChange(Entity * entity, DataChange::ETransact transact,
                            DataChange::EChangeType type, DataChange * details) = 0;
    // Before the entity leaves the document.
    virtual void preDeletion(Entity * entity, DataChange::ETransact transact) = 0;

    // The id of this interface, of the object's own class, and the object as a class or interface.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn

#endif
