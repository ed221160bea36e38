#include "Platform/AddInMgr/IAddInInitializeAsset.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn {

IAddInInitializeAsset::~IAddInInitializeAsset() = default;

void IAddInInitializeAsset::onInitializeNewAsset(Asset *, AddIn const *) {}
void IAddInInitializeAsset::onInitializeLoadedAsset(Asset *, AddIn const *) {}
void IAddInInitializeAsset::onFullyInitializeLoadedAsset(Asset *, AddIn const *) {}

UniqueString const * IAddInInitializeAsset::interfaceId() {
    static constinit InterfaceId s_id("Vn::IAddInInitializeAsset");
    return s_id.get();
}

UniqueString const * IAddInInitializeAsset::getInterfaceId() const { return interfaceId(); }

void * IAddInInitializeAsset::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IAddInInitializeAsset *>(this) : nullptr;
}

} // namespace Vn
