#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::CommonData {

IMassPropertyCalculator::~IMassPropertyCalculator() = default;

UniqueString const * IMassPropertyCalculator::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::IMassPropertyCalculator");
    return s_id.get();
}

UniqueString const * IMassPropertyCalculator::getInterfaceId() const { return interfaceId(); }

void * IMassPropertyCalculator::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IMassPropertyCalculator *>(this) : nullptr;
}

} // namespace Vn::CommonData
