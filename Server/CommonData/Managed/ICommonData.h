// The common-data side of the two parallel trees of a document.  A client library hangs objects of
// its own on to the common data; either side may die first.

#ifndef VN_SERVER_COMMONDATA_MANAGED_ICOMMONDATA_H
#define VN_SERVER_COMMONDATA_MANAGED_ICOMMONDATA_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/Export.h"

namespace Vn {
class IEntityObserver;
}

namespace Vn::Managed {
class ManagedEntity;
}

namespace Vn::CommonData {

class ICommonDataClientObject;

// An entity that may have a client object.
class VN_COMMONDATA_API ICommonData {
public:
    virtual ~ICommonData();

    // The parent in the tree; null if there is none.
    virtual StrongRef<Entity> commonDataParent() = 0;
    // The topmost ancestor; null if there is no parent, or if the parents lead in a circle.  All
    // ancestors must be common data; one that isn't ends the way there.
    virtual StrongRef<Entity> commonDataAncestor() = 0;
    // Sets the client, null for none, in a change of its own; and the client, null if there is none
    // or if it is gone.  An entity that offers IEntityObserver observes its client.
    virtual void commonDataClientObject(ICommonDataClientObject * client) = 0;
    virtual ICommonDataClientObject * commonDataClientObject() const = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

// What makes a managed entity common data: a class derives from its managed base and from this.
class VN_COMMONDATA_API ICommonDataHelper : public ICommonData {
public:
    // Without a client; or with the same client, which only the original observes.
    ICommonDataHelper();
    ICommonDataHelper(ICommonDataHelper const & other);
    ICommonDataHelper & operator=(ICommonDataHelper const & other);
    ~ICommonDataHelper() override;

    // The object that this is a part of.
    Managed::ManagedEntity * managedEntity() const;

    // As of ICommonData.
    StrongRef<Entity> commonDataParent() override;
    StrongRef<Entity> commonDataAncestor() override;
    void commonDataClientObject(ICommonDataClientObject * client) override;
    ICommonDataClientObject * commonDataClientObject() const override;

protected:
    // Attaches and detaches the object's observer, if it offers one, to and from the client, if
    // that is alive: for classes whose objects come and go by undo and redo, which restore the
    // client as they restore any member.
    void observeClient();
    void ignoreClient();

    // The client, for the member sets of derived classes.
    PassiveRef<Entity> m_rClientObject;

private:
    // What observes the client; null if nothing does.
    IEntityObserver * m_pObserver = nullptr;
};

} // namespace Vn::CommonData

#endif
