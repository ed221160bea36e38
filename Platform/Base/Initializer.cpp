#include "Platform/Base/Initializer.h"

#include <deque>
#include <mutex>

#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Shared.h"

namespace Vn {

namespace {

struct List {
    // Held by the thread that runs the functions, which may themselves call runAll.
    std::recursive_mutex running;
    // Guards `waiting` for a few instructions.
    std::mutex mutex;
    std::deque<Initializer const *> waiting;
};

constinit Shared<List> s_list;

List & list() {
    return s_list.get([] { return new List; });
}

void note(void (*function)(), RegistrationLog::EEvent event) {
    RegistrationLog::note(RegistrationLog::EKind::Initializer, {},
                          reinterpret_cast<void const *>(function), event);
}

} // namespace

Initializer::Initializer(void (*function)()) : m_function(function) {
    if (!m_function) return;
    List & all = list();
    std::lock_guard const guard(all.mutex);
    all.waiting.push_back(this);
    note(m_function, RegistrationLog::EEvent::Joins);
}

Initializer::~Initializer() {
    if (!m_function) return;
    List & all = list();
    std::lock_guard const guard(all.mutex);
    std::erase(all.waiting, this);
    note(m_function, RegistrationLog::EEvent::Leaves);
}

void Initializer::runAll() {
    List & all = list();
    std::lock_guard const running(all.running);
    for (;;) {
        void (*function)() = nullptr;
        {
            std::lock_guard const guard(all.mutex);
            if (all.waiting.empty()) return;
            function = all.waiting.front()->m_function;
            all.waiting.pop_front();
        }
        function();
    }
}

} // namespace Vn
