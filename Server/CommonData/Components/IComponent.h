#ifndef VN_SERVER_COMMONDATA_COMPONENTS_ICOMPONENT_H
#define VN_SERVER_COMMONDATA_COMPONENTS_ICOMPONENT_H

#include <vector>

#include "Platform/Base/UniqueString.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

class ComponentDataChange;

// An entity that is a component of the application's document.  It is told of changes of the
// component objects below it, once per change bracket.
class VN_COMMONDATA_API IComponent {
public:
    // Before a change and after it.  The flag is true at present.
    virtual void onComponentPreChange(ComponentDataChange const * change) = 0;
    virtual void onComponentPostChange(ComponentDataChange const * change, bool flag) = 0;
    // Adds further components that are to be told of the same change; `components` has this one.
    virtual void collectComponents(std::vector<IComponent *> & components) = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

    // Without state of its own.
    IComponent() = default;
    IComponent(IComponent const &) = default;
    IComponent & operator=(IComponent const &) = default;

protected:
    // Nobody owns an object by this interface.
    ~IComponent() = default;
};

} // namespace Vn::CommonData

#endif
