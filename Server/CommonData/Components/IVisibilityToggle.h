#ifndef VN_SERVER_COMMONDATA_COMPONENTS_IVISIBILITYTOGGLE_H
#define VN_SERVER_COMMONDATA_COMPONENTS_IVISIBILITYTOGGLE_H

#include "Platform/Base/UniqueString.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

// An entity that the user may show and hide.
class VN_COMMONDATA_API IVisibilityToggle {
public:
    virtual ~IVisibilityToggle();

    // Shows what is hidden, and hides what is shown.
    virtual void toggleVisibility() = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

    // Without state of its own.
    IVisibilityToggle() = default;
    IVisibilityToggle(IVisibilityToggle const &) = default;
    IVisibilityToggle & operator=(IVisibilityToggle const &) = default;
};

} // namespace Vn::CommonData

#endif
