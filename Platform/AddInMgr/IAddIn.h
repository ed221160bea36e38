// What a module offers to the application that loads it.

#ifndef VN_PLATFORM_ADDINMGR_IADDIN_H
#define VN_PLATFORM_ADDINMGR_IADDIN_H

#include <string>

#include "Platform/AddInMgr/Export.h"
#include "Platform/Base/UniqueString.h"

namespace Vn {

class AddIn;

// The object by which a module is known to the add-in manager.  A module has one, of static
// storage, and gives it to the manager by the exported function
//
//     extern "C" VN_ADDIN_EXPORT Vn::IAddIn * _GetIAddIn();
//
// which does nothing but return its address, the same at every call.  The object stays the
// module's, and ends with it.
//
// The virtual operations stand in an order that other modules rely on.
class VN_ADDINMGR_API IAddIn {
public:
    // The type of `_GetIAddIn`.
    using Getter = IAddIn *();

    virtual ~IAddIn();
    IAddIn(IAddIn const &) = delete;
    IAddIn & operator=(IAddIn const &) = delete;

    // A text for people; unless overridden, the name of the object's class.
    virtual std::wstring toString() const;

    // The public road to the hooks below.
    void loaded() { onLoaded(); }
    void unloading(AddIn const * record) { onUnloading(record); }

protected:
    IAddIn() = default;

private:
    // The manager calls it once after each load of the module, when the module's initialisers have
    // run and the add-ins that come before are loaded.  Does nothing unless overridden.  If it
    // throws, the add-in counts as failed, and the module is let go.
    virtual void onLoaded();
    // The manager calls it before it unloads the module, with its record of the add-in, which is
    // never null.  No document is open.  Does nothing unless overridden.  If it throws, the module
    // stays loaded.
    virtual void onUnloading(AddIn const * record);

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
