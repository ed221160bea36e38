#ifndef VN_PLATFORM_BASE_REGISTRATIONLOG_H
#define VN_PLATFORM_BASE_REGISTRATIONLOG_H

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"

namespace Vn {

// What joins the registries of the platform and leaves them, in order, for as long as the log
// lives: what a module brings while it loads, and whether it takes all of it with it.  Several logs
// may live, and any thread may register or ask.
//
//     Vn::RegistrationLog const log;
//     manager.load();
//     for (auto const & entry : log.entries()) ...
class VN_BASE_API RegistrationLog {
public:
    // What registers, and what its name is.
    enum class EKind {
        MetaType,        // of entities or values: the name of its own class
        TextCommandArea, // its name
        TextCommand,     // its area and name, with a full stop between
        Initializer,     // none
        SelfCheck,       // its group and name, with a full stop between
        AddIn,           // the file name that is told for the server of common data
        Static           // what the module says by note()
    };
    // What happens to it.
    enum class EEvent { Joins, Leaves };

    // One event.  An entry of the same kind and address that joined earlier is what leaves.
    struct Entry {
        EEvent event = EEvent::Joins;   // what happened
        EKind kind = EKind::Static;     // to what
        std::string name;               // in UTF-8
        void const * address = nullptr; // of the object; of the function of an Initializer
    };

    RegistrationLog();
    ~RegistrationLog();
    RegistrationLog(RegistrationLog const &) = delete;
    RegistrationLog & operator=(RegistrationLog const &) = delete;

    // What was noted so far.
    std::vector<Entry> entries() const;
    // Whether each event was noted; not if memory ran out.
    bool isComplete() const;

    // Whether there is a log, so that a name is worth making.
    static bool isAsked() noexcept;
    // Tells the logs.  Without one it does nothing.
    static void note(EKind kind, std::string_view name, void const * address = nullptr,
                     EEvent event = EEvent::Joins) noexcept;

private:
    void add(EEvent event, EKind kind, std::string_view name, void const * address) noexcept;

    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
    bool m_bComplete = true;
};

} // namespace Vn

#endif
