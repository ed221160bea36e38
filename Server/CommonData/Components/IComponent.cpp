#include "Server/CommonData/Components/IComponent.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::CommonData {

UniqueString const * IComponent::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::IComponent");
    return s_id.get();
}

UniqueString const * IComponent::getInterfaceId() const { return interfaceId(); }

void * IComponent::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IComponent *>(this) : nullptr;
}

} // namespace Vn::CommonData
