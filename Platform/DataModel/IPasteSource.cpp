#include "Platform/DataModel/IPasteSource.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::DataModel {

IPasteSource::~IPasteSource() = default;

UniqueString const * IPasteSource::interfaceId() {
    static constinit InterfaceId s_id("Vn::DataModel::IPasteSource");
    return s_id.get();
}

UniqueString const * IPasteSource::getInterfaceId() const { return interfaceId(); }

void * IPasteSource::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IPasteSource *>(this) : nullptr;
}

} // namespace Vn::DataModel
