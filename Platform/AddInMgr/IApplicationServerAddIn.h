#ifndef VN_PLATFORM_ADDINMGR_IAPPLICATIONSERVERADDIN_H
#define VN_PLATFORM_ADDINMGR_IAPPLICATIONSERVERADDIN_H

#include "Platform/AddInMgr/IServerAddIn.h"

namespace Vn {

// A server that belongs to one application, and equips the documents of that.
class VN_ADDINMGR_API IApplicationServerAddIn : public IServerAddIn {
public:
    // As of the base, with an id of this class's own.
    static UniqueString const * interfaceId();
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const * id) const override;
};

} // namespace Vn

#endif
