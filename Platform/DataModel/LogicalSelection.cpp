#include "Platform/DataModel/LogicalSelection.h"

namespace Vn {

Selection::~Selection() = default;

LogicalSelection::~LogicalSelection() = default;

std::wstring LogicalSelection::onUserName() const { return m_path.toString(); }

} // namespace Vn
