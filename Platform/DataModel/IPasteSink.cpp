#include "Platform/DataModel/IPasteSink.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::DataModel {

IPasteSink::~IPasteSink() = default;

bool IPasteSink::onCanPaste(std::vector<ObjectPath> const & paths,
                            ObjectPath const & target) const {
    return onCanReorder(paths, target);
}

UniqueString const * IPasteSink::interfaceId() {
    static constinit InterfaceId s_id("Vn::DataModel::IPasteSink");
    return s_id.get();
}

UniqueString const * IPasteSink::getInterfaceId() const { return interfaceId(); }

void * IPasteSink::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IPasteSink *>(this) : nullptr;
}

} // namespace Vn::DataModel
