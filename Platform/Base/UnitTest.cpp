#include "Platform/Base/UnitTest.h"

#include <exception>
#include <utility>

#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"

namespace Vn {

namespace {

struct Registry {
    std::mutex mutex;
    std::vector<UnitTest *> tests;
};

constinit Shared<Registry> s_registry;

Registry & registry() {
    return s_registry.get([] { return new Registry; });
}

void tell(UnitTest const & test, RegistrationLog::EEvent event) {
    if (RegistrationLog::isAsked())
        RegistrationLog::note(RegistrationLog::EKind::SelfCheck, test.group() + '.' + test.name(),
                              &test, event);
}

} // namespace

UnitTest::UnitTest(std::string group, std::string name, void (*function)(UnitTest &))
    : m_group(std::move(group)), m_name(std::move(name)), m_function(function) {
    Registry & known = registry();
    std::lock_guard const guard(known.mutex);
    known.tests.push_back(this);
    tell(*this, RegistrationLog::EEvent::Joins);
}

UnitTest::~UnitTest() {
    Registry & known = registry();
    std::lock_guard const guard(known.mutex);
    std::erase(known.tests, this);
    tell(*this, RegistrationLog::EEvent::Leaves);
}

bool UnitTest::Assert(bool condition, std::wstring_view text) {
    ++m_report.assertions;
    if (!condition) m_report.failures.emplace_back(text);
    return condition;
}

void UnitTest::note(std::wstring_view text) { m_report.notes.emplace_back(text); }

std::vector<UnitTest *> UnitTest::all() {
    Registry & known = registry();
    std::lock_guard const guard(known.mutex);
    return known.tests;
}

UnitTest::Report UnitTest::run(UnitTest & test) {
    std::lock_guard const guard(test.m_running);
    test.m_report = Report();
    test.m_report.group = test.m_group;
    test.m_report.name = test.m_name;
    try {
        test.m_function(test);
    } catch (std::exception const & exception) {
        test.Assert(false, L"exception: " + Text::fromUtf8(exception.what()));
    } catch (...) {
        test.Assert(false, L"exception of an unknown kind");
    }
    return std::exchange(test.m_report, Report());
}

std::vector<UnitTest::Report> UnitTest::run(std::string_view group) {
    std::vector<Report> reports;
    for (UnitTest * const test : all())
        if (test->group() == group) reports.push_back(run(*test));
    return reports;
}

} // namespace Vn
