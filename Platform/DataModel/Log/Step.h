#ifndef VN_PLATFORM_DATAMODEL_LOG_STEP_H
#define VN_PLATFORM_DATAMODEL_LOG_STEP_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Log/ChangeLog.h"

namespace Vn {

// One step of the history, or a transaction that is open.
struct ChangeHistory::Step {
    Step(std::shared_ptr<std::wstring const> name, std::uint32_t log, DataModel::ChangeLog * around)
        : m_pName(std::move(name)), m_log(log), m_pAround(around) {}

    std::shared_ptr<std::wstring const> const m_pName;
    DataModel::ChangeLog m_log;
    std::uint64_t m_state = 0;        // of the document once the step is done
    DataModel::ChangeLog * m_pAround; // the log that was open when the transaction began
};

// Marks the time of a replay.
class ChangeHistory::Replaying {
public:
    explicit Replaying(bool & flag) noexcept : m_flag(flag) { m_flag = true; }
    ~Replaying() { m_flag = false; }
    Replaying(Replaying const &) = delete;
    Replaying & operator=(Replaying const &) = delete;

private:
    bool & m_flag;
};

template <class Visit>
void ChangeHistory::forEachLog(Visit && visit) {
    for (auto const & step : m_open) visit(step->m_log);
    for (auto const & step : m_undo) visit(step->m_log);
    for (auto const & step : m_redo) visit(step->m_log);
    if (m_pLate) visit(*m_pLate);
}

} // namespace Vn

#endif
