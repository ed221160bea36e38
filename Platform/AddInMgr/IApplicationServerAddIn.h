#ifndef VN_PLATFORM_ADDINMGR_IAPPLICATIONSERVERADDIN_H
#define VN_PLATFORM_ADDINMGR_IAPPLICATIONSERVERADDIN_H

#include "Platform/AddInMgr/IServerAddIn.h"
#include "Platform/Base/InterfaceId.h"

namespace Vn {

// A server that belongs to one application, and equips the documents of that.
class VN_ADDINMGR_API IApplicationServerAddIn
    : public Identified<IApplicationServerAddIn, IServerAddIn> {
public:
    // How others find the interface.
    static constexpr NamedClass c_class{"Vn::IApplicationServerAddIn"};
};

} // namespace Vn

#endif
