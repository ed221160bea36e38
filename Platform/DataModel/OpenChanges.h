#ifndef VN_PLATFORM_DATAMODEL_OPENCHANGES_H
#define VN_PLATFORM_DATAMODEL_OPENCHANGES_H

#include "Platform/DataModel/Export.h"

namespace Vn {

class ChangeHistory;

// Whether the innermost transaction that is open has recorded a change by now, so that it will
// leave a step; false without a transaction.  For what is to be done only along with a change.
VN_DATAMODEL_API bool hasOpenChanges(ChangeHistory const & history) noexcept;

} // namespace Vn

#endif
