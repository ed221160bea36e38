#include "Platform/DataModel/ILogicalSelectionSource.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn {

ILogicalSelectionSource::~ILogicalSelectionSource() = default;

bool ILogicalSelectionSource::onIsFinalLogicalSelectionSource() const { return true; }

void ILogicalSelectionSource::onLeafObjectPaths(ObjectPath const & path,
                                                std::vector<ObjectPath> & leaves) const {
    leaves.push_back(path);
}

UniqueString const * ILogicalSelectionSource::interfaceId() {
    static constinit InterfaceId s_id("Vn::ILogicalSelectionSource");
    return s_id.get();
}

UniqueString const * ILogicalSelectionSource::getInterfaceId() const { return interfaceId(); }

void * ILogicalSelectionSource::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<ILogicalSelectionSource *>(this) : nullptr;
}

} // namespace Vn
