#include "Console/CommandLine/SelfTestCommand.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/UnitTest.h"

namespace Vn::Console {

namespace {

std::wstring assertionsText(std::size_t count) {
    return counted(count, tr(L"%1% assertion"), tr(L"%1% assertions"));
}

std::wstring failuresText(std::size_t count) {
    return counted(count, tr(L"%1% failure"), tr(L"%1% failures"));
}

void show(UnitTest::Report const & report, std::ostream & out) {
    wchar_t const * const line =
        report.passed() ? tr(L"%1%: passed, %2%, %3%") : tr(L"%1%: FAILED, %2%, %3%");
    out << messageUtf8(line, Text::fromUtf8(report.group + ' ' + report.name),
                       assertionsText(report.assertions), failuresText(report.failures.size()))
        << '\n';
    for (std::wstring const & note : report.notes) out << "  " << Text::toUtf8(note) << '\n';
    for (std::wstring const & failure : report.failures)
        out << messageUtf8(L"  failed: %1%", printable(failure)) << '\n';
    out.flush();
}

// The checks type English words, and are done in English.
UnitTest::Report runInEnglish(UnitTest & test) {
    struct Language {
        Language() { StringTable::language({}); }
        ~Language() { StringTable::language(chosen); }
        std::string const chosen = StringTable::language();
    } const language;
    return UnitTest::run(test);
}

int unknownGroup(std::string const & group, std::vector<UnitTest *> const & tests,
                 std::ostream & err) {
    std::vector<std::string> groups;
    for (UnitTest const * const test : tests)
        if (std::find(groups.begin(), groups.end(), test->group()) == groups.end())
            groups.push_back(test->group());
    std::wstring all;
    for (std::string const & known : groups)
        all += (all.empty() ? L"" : L" ") + Text::fromUtf8(known);
    return told(message(L"there is no group %1% of self-checks; the groups are: %2%",
                        inQuotes(Text::fromUtf8(group)), all),
                err);
}

} // namespace

int runSelfTest(std::string const & group, std::ostream & out, std::ostream & err) {
    std::vector<UnitTest *> const tests = UnitTest::all();
    std::size_t checks = 0;
    std::size_t assertions = 0;
    std::size_t failures = 0;
    for (UnitTest * const test : tests) {
        if (!group.empty() && test->group() != group) continue;
        UnitTest::Report const report = runInEnglish(*test);
        show(report, out);
        ++checks;
        assertions += report.assertions;
        failures += report.failures.size();
    }
    if (checks == 0) return unknownGroup(group, tests, err);
    out << messageUtf8(L"%1%, %2%, %3%", counted(checks, tr(L"%1% check"), tr(L"%1% checks")),
                       assertionsText(assertions), failuresText(failures))
        << '\n';
    return failures == 0 ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
