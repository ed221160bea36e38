// The client side of the two parallel trees of a document.

#ifndef VN_SERVER_COMMONDATA_MANAGED_ICOMMONDATACLIENTOBJECT_H
#define VN_SERVER_COMMONDATA_MANAGED_ICOMMONDATACLIENTOBJECT_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/Export.h"

namespace Vn::Managed {
class ManagedEntity;
}

namespace Vn::CommonData {

class ICommonData;

// An entity of a client library that belongs to an entity of the common data.
class VN_COMMONDATA_API ICommonDataClientObject {
public:
    virtual ~ICommonDataClientObject();

    // Sets the common data, null for none, in a change of its own; and the common data, null if
    // there is none or if it is gone.
    virtual void commonData(ICommonData * data) = 0;
    virtual ICommonData * commonData() const = 0;

    // As of ICommonData.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

// What makes a managed entity a client object: a class derives from its managed base and from this.
//
// Common data with a parent belongs to the tree and is held passively.  One without would have
// nobody, and is kept alive from here; once it has been moved into the tree, commonData is to be
// set again.
class VN_COMMONDATA_API ICommonDataClientObjectHelper : public ICommonDataClientObject {
public:
    // Without common data; or with the same.
    ICommonDataClientObjectHelper();
    ICommonDataClientObjectHelper(ICommonDataClientObjectHelper const & other);
    ICommonDataClientObjectHelper & operator=(ICommonDataClientObjectHelper const & other);
    ~ICommonDataClientObjectHelper() override;

    // The object that this is a part of.
    Managed::ManagedEntity * managedEntity() const;

    // As of ICommonDataClientObject.
    void commonData(ICommonData * data) override;
    ICommonData * commonData() const override;

    // Lets go of the common data.  Called by the object's own onPreDeletion.
    void onPreDeletion(DataChange::ETransact transact);

protected:
    // The two ways to the common data, for the member sets of derived classes; at most one is set.
    PassiveRef<Entity> m_rCommonData;
    StrongRef<Entity> m_rOwnedCommonData;
};

} // namespace Vn::CommonData

#endif
