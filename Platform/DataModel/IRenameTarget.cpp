#include "Platform/DataModel/IRenameTarget.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::DataModel {

IRenameTarget::~IRenameTarget() = default;

bool IRenameTarget::isUniqueName(std::wstring const &) const { return true; }

std::wstring IRenameTarget::onGetUniqueName(std::wstring const & name) const { return name; }

UniqueString const * IRenameTarget::interfaceId() {
    static constinit InterfaceId s_id("Vn::DataModel::IRenameTarget");
    return s_id.get();
}

UniqueString const * IRenameTarget::getInterfaceId() const { return interfaceId(); }

void * IRenameTarget::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IRenameTarget *>(this) : nullptr;
}

} // namespace Vn::DataModel
