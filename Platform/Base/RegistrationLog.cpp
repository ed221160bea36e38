#include "Platform/Base/RegistrationLog.h"

#include <atomic>
#include <new>

#include "Platform/Base/Shared.h"

namespace Vn {

namespace {

struct Logs {
    std::mutex mutex;
    std::vector<RegistrationLog *> all;
};

constinit Shared<Logs> s_logs;
constinit std::atomic<int> s_count{0};

Logs & allLogs() {
    return s_logs.get([] { return new Logs; });
}

} // namespace

bool RegistrationLog::isAsked() noexcept { return s_count.load(std::memory_order_relaxed) != 0; }

RegistrationLog::RegistrationLog() {
    Logs & logs = allLogs();
    std::lock_guard const guard(logs.mutex);
    logs.all.push_back(this);
    ++s_count;
}

RegistrationLog::~RegistrationLog() {
    Logs & logs = allLogs();
    std::lock_guard const guard(logs.mutex);
    std::erase(logs.all, this);
    --s_count;
}

std::vector<RegistrationLog::Entry> RegistrationLog::entries() const {
    std::lock_guard const guard(m_mutex);
    return m_entries;
}

bool RegistrationLog::isComplete() const {
    std::lock_guard const guard(m_mutex);
    return m_bComplete;
}

void RegistrationLog::note(EKind kind, std::string_view name, void const * address,
                           EEvent event) noexcept {
    if (!isAsked()) return;
    Logs & logs = allLogs();
    std::lock_guard const guard(logs.mutex);
    for (RegistrationLog * const log : logs.all) log->add(event, kind, name, address);
}

void RegistrationLog::add(EEvent event, EKind kind, std::string_view name,
                          void const * address) noexcept {
    std::lock_guard const guard(m_mutex);
    try {
        m_entries.push_back({event, kind, std::string(name), address});
    } catch (std::bad_alloc const &) {
        m_bComplete = false;
    }
}

} // namespace Vn
