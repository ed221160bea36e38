#ifndef VN_PLATFORM_ADDINMGR_ISERVERADDIN_H
#define VN_PLATFORM_ADDINMGR_ISERVERADDIN_H

#include "Platform/AddInMgr/IAddIn.h"

namespace Vn {

// An add-in that brings classes and services and shows nothing itself.
class VN_ADDINMGR_API IServerAddIn : public IAddIn {
public:
    // As of the base, with an id of this class's own.
    static UniqueString const * interfaceId();
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const * id) const override;
};

} // namespace Vn

#endif
