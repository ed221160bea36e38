#ifndef VN_PLATFORM_ADDINMGR_IADDININITIALIZEASSET_H
#define VN_PLATFORM_ADDINMGR_IADDININITIALIZEASSET_H

#include "Platform/AddInMgr/Export.h"
#include "Platform/Base/UniqueString.h"

namespace Vn {

class AddIn;
class Asset;

// An add-in that takes a part in making or opening documents.  The add-in manager asks the object
// of each loaded add-in for it by `queryInterface`, and hands on every document, whatever its type:
//
//     a new document       new, loaded, fully loaded
//     one that is opened   loaded, fully loaded
//
// `asset` isn't null and stays the caller's; `record` is the manager's record of the add-in, or
// null if somebody else calls.  What a hook throws ends the opening, and the caller closes the
// document.
//
// The virtual operations stand in an order that other modules rely on.
class VN_ADDINMGR_API IAddInInitializeAsset {
public:
    virtual ~IAddInInitializeAsset();
    IAddInInitializeAsset(IAddInInitializeAsset const &) = delete;
    IAddInInitializeAsset & operator=(IAddInInitializeAsset const &) = delete;

    // The public road to the hooks below.
    void initializeNewAsset(Asset * asset, AddIn const * record) {
        onInitializeNewAsset(asset, record);
    }
    void initializeLoadedAsset(Asset * asset, AddIn const * record) {
        onInitializeLoadedAsset(asset, record);
    }
    void fullyInitializeLoadedAsset(Asset * asset, AddIn const * record) {
        onFullyInitializeLoadedAsset(asset, record);
    }

protected:
    IAddInInitializeAsset() = default;

private:
    // The document was made and is empty.  Does nothing unless overridden.
    virtual void onInitializeNewAsset(Asset * asset, AddIn const * record);
    // The entities of the document are there; other add-ins may not have been told yet.  Does
    // nothing unless overridden.
    virtual void onInitializeLoadedAsset(Asset * asset, AddIn const * record);
    // The document is complete, and each add-in has had the hook before.  Does nothing unless
    // overridden.
    virtual void onFullyInitializeLoadedAsset(Asset * asset, AddIn const * record);

public:
    // The id of the interface, the same pointer at every call.
    static UniqueString const * interfaceId();
    // The id of the object's own class, and the object as the class or interface with an id; null
    // if it doesn't offer it.
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn

#endif
