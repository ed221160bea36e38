#include "Server/CommonData/Components/IVisibilityToggle.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::CommonData {

IVisibilityToggle::~IVisibilityToggle() = default;

UniqueString const * IVisibilityToggle::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::IVisibilityToggle");
    return s_id.get();
}

UniqueString const * IVisibilityToggle::getInterfaceId() const { return interfaceId(); }

void * IVisibilityToggle::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IVisibilityToggle *>(this) : nullptr;
}

} // namespace Vn::CommonData
