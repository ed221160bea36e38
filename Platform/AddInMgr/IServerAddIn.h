#ifndef VN_PLATFORM_ADDINMGR_ISERVERADDIN_H
#define VN_PLATFORM_ADDINMGR_ISERVERADDIN_H

#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/Base/InterfaceId.h"

namespace Vn {

// An add-in that brings classes and services and shows nothing itself.
class VN_ADDINMGR_API IServerAddIn : public Identified<IServerAddIn, IAddIn> {
public:
    // How others find the interface.
    static constexpr NamedClass c_class{"Vn::IServerAddIn"};
};

} // namespace Vn

#endif
