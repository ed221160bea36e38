#include "Platform/DataModel/LogicalSelection.h"

#include "Platform/DataModel/InterfaceId.h"

namespace Vn {

Selection::~Selection() = default;

UniqueString const * Selection::interfaceId() {
    static constinit InterfaceId s_id("Vn::Selection");
    return s_id.get();
}

UniqueString const * Selection::getInterfaceId() const { return interfaceId(); }

void * Selection::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<Selection *>(this) : nullptr;
}

LogicalSelection::~LogicalSelection() = default;

UniqueString const * LogicalSelection::interfaceId() {
    static constinit InterfaceId s_id("Vn::LogicalSelection");
    return s_id.get();
}

UniqueString const * LogicalSelection::getInterfaceId() const { return interfaceId(); }

void * LogicalSelection::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<LogicalSelection *>(this)
                               : Selection::queryInterface(id);
}

std::wstring LogicalSelection::onUserName() const { return m_path.toString(); }

} // namespace Vn
