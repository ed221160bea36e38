#include "Server/CommonData/Managed/ICustomGroup.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::Managed {

UniqueString const * ICustomGroupParent::interfaceId() {
    static constinit InterfaceId s_id("Vn::Managed::ICustomGroupParent");
    return s_id.get();
}

UniqueString const * ICustomGroupParent::getInterfaceId() const { return interfaceId(); }

void * ICustomGroupParent::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<ICustomGroupParent *>(this) : nullptr;
}

UniqueString const * ICustomGroupChild::interfaceId() {
    static constinit InterfaceId s_id("Vn::Managed::ICustomGroupChild");
    return s_id.get();
}

UniqueString const * ICustomGroupChild::getInterfaceId() const { return interfaceId(); }

void * ICustomGroupChild::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<ICustomGroupChild *>(this) : nullptr;
}

} // namespace Vn::Managed
