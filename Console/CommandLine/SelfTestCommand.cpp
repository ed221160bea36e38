#include "Console/CommandLine/SelfTestCommand.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/UnitTest.h"

namespace Vn::Console {

namespace {

std::string counted(std::size_t count, char const * what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

void show(UnitTest::Report const & report, std::ostream & out) {
    out << report.group << ' ' << report.name << ": " << (report.passed() ? "passed" : "FAILED")
        << ", " << counted(report.assertions, "assertion") << ", "
        << counted(report.failures.size(), "failure") << '\n';
    for (std::wstring const & note : report.notes) out << "  " << Text::toUtf8(note) << '\n';
    for (std::wstring const & failure : report.failures)
        out << "  failed: " << Text::toUtf8(printable(failure)) << '\n';
    out.flush();
}

int unknownGroup(std::string const & group, std::vector<UnitTest *> const & tests,
                 std::ostream & err) {
    std::vector<std::string> groups;
    for (UnitTest const * const test : tests)
        if (std::find(groups.begin(), groups.end(), test->group()) == groups.end())
            groups.push_back(test->group());
    err << "vnconsole: there is no group " << Text::toUtf8(inQuotes(Text::fromUtf8(group)))
        << " of self-checks; the groups are:";
    for (std::string const & known : groups) err << ' ' << known;
    err << '\n';
    return ExitBadInput;
}

} // namespace

int runSelfTest(std::string const & group, std::ostream & out, std::ostream & err) {
    std::vector<UnitTest *> const tests = UnitTest::all();
    std::size_t checks = 0;
    std::size_t assertions = 0;
    std::size_t failures = 0;
    for (UnitTest * const test : tests) {
        if (!group.empty() && test->group() != group) continue;
        UnitTest::Report const report = UnitTest::run(*test);
        show(report, out);
        ++checks;
        assertions += report.assertions;
        failures += report.failures.size();
    }
    if (checks == 0) return unknownGroup(group, tests, err);
    out << counted(checks, "check") << ", " << counted(assertions, "assertion") << ", "
        << counted(failures, "failure") << '\n';
    return failures == 0 ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
