#include "Server/CommonData/Components/IDefaultMaterialProvider.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::CommonData {

UniqueString const * IDefaultMaterialProvider::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::IDefaultMaterialProvider");
    return s_id.get();
}

UniqueString const * IDefaultMaterialProvider::getInterfaceId() const { return interfaceId(); }

void * IDefaultMaterialProvider::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IDefaultMaterialProvider *>(this) : nullptr;
}

} // namespace Vn::CommonData
