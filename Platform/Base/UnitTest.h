#ifndef VN_PLATFORM_BASE_UNITTEST_H
#define VN_PLATFORM_BASE_UNITTEST_H

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"

namespace Vn {

// A check that a module carries with it, to be run inside the product: by its console, or by a test
// program.  It joins the process's list when it is constructed and leaves it when it is destroyed.
class VN_BASE_API UnitTest {
public:
    // What one run of a check gave.
    struct Report {
        std::string group;                  // of the check
        std::string name;                   // of the check, within the group
        std::size_t assertions = 0;         // how many were made, failed ones included
        std::vector<std::wstring> failures; // the texts of those that failed, in order
        std::vector<std::wstring> notes;    // what the check has to tell besides

        // Whether no assertion failed.
        bool passed() const noexcept { return failures.empty(); }
    };

    // `function` makes the assertions on the check that it is given.
    UnitTest(std::string group, std::string name, void (*function)(UnitTest &));
    ~UnitTest();
    UnitTest(UnitTest const &) = delete;
    UnitTest & operator=(UnitTest const &) = delete;

    // What the constructor was given.
    std::string const & group() const noexcept { return m_group; }
    std::string const & name() const noexcept { return m_name; }

    // Records an assertion and returns its condition.  `text` tells what was asserted and is kept
    // if it failed.  To be called while the check runs, and by the thread that runs it.
    bool Assert(bool condition, std::wstring_view text);

    // Adds a line to the report, such as a count of what was checked.
    void note(std::wstring_view text);

    // All checks, in the order in which they joined.
    static std::vector<UnitTest *> all();

    // Runs a check.  An exception ends it and is one more failed assertion, with its text.  A check
    // that another thread is running is waited for.
    static Report run(UnitTest & test);

    // Runs the checks of a group in the order in which they joined; none if there is no such group.
    static std::vector<Report> run(std::string_view group);

private:
    std::string const m_group;
    std::string const m_name;
    void (*const m_function)(UnitTest &);
    std::mutex m_running;
    Report m_report;
};

} // namespace Vn

#endif
