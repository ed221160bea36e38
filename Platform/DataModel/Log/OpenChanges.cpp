#include "Platform/DataModel/OpenChanges.h"

#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Log/ChangeLog.h"
#include "Platform/DataModel/Log/Recorder.h"

namespace Vn {

bool hasOpenChanges(ChangeHistory const & history) noexcept {
    if (!history.isInTransaction()) return false;
    DataModel::ChangeLog const * const log = history.recorder().log();
    return log && !log->empty();
}

} // namespace Vn
