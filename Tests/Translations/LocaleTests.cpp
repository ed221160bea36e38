// The locale of the process changes nothing: both tables of worked expressions hold in English
// while C and C++ are set to another language, of which no catalogue is chosen.

#include <clocale>
#include <locale>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "Platform/Base/StringTable.h"
#include "Platform/Base/UnitTest.h"
#include "Tests/Support/FreshProcess.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

// Which of the two locales of the process a test changes.
enum class Of { C, Cpp };

struct Row {
    char const * locale;
    Of of;
    std::vector<std::wstring> failures;
};

std::string nameOf(Row const & row) {
    return row.locale + std::string(row.of == Of::C ? "_C" : "_Cpp");
}

// Found by the test framework.
void PrintTo(Row const & row, std::ostream * out) { *out << nameOf(row); }

// The last lookup of a unit folds case by the global locale of C++, in which a Turkish "I" isn't
// the capital of "i".  That is all that shows.
Row const c_rows[] = {
    {"de_DE", Of::C, {}},
    {"de_DE", Of::Cpp, {}},
    {"fr_FR", Of::C, {}},
    {"fr_FR", Of::Cpp, {}},
    {"ja_JP", Of::C, {}},
    {"ja_JP", Of::Cpp, {}},
    {"tr_TR", Of::C, {}},
    {"tr_TR",
     Of::Cpp,
     {L"\"1IN\" in \"cm\": parses", L"\"1InCH\" in \"cm\": parses",
      L"\"1INCH\" in \"cm\": parses"}},
};

Row const * s_row = nullptr;

class LocaleTests : public testing::TestWithParam<Row> {};

INSTANTIATE_TEST_SUITE_P(Locales, LocaleTests, testing::ValuesIn(c_rows),
                         [](auto const & row) { return nameOf(row.param); });

std::string localeName() { return std::string(s_row->locale) + ".UTF-8"; }

bool isInstalled(std::string const & name) {
    try {
        std::locale const locale(name);
        return true;
    } catch (std::runtime_error const &) {
        return false;
    }
}

void runWorkedExpressions() {
    if (s_row->of == Of::C)
        std::setlocale(LC_ALL, localeName().c_str());
    else
        std::locale::global(std::locale(localeName())); // which sets that of C too
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), localeName());
    StringTable::catalogueDirectory(VN_CATALOGUES);
    std::size_t checks = 0;
    std::vector<std::wstring> failures;
    for (UnitTest * const test : UnitTest::all()) {
        if (test->group() != "SmokeTest") continue;
        ++checks;
        UnitTest::Report const report = UnitTest::run(*test);
        EXPECT_GT(report.assertions, 200U) << test->name();
        failures.insert(failures.end(), report.failures.begin(), report.failures.end());
    }
    EXPECT_EQ(checks, 2U);
    EXPECT_EQ(failures, s_row->failures);
    EXPECT_EQ(StringTable::language(), "");
}

TEST_P(LocaleTests, WorkedExpressionsHold) {
    s_row = &GetParam();
    if (!isInstalled(localeName()))
        GTEST_SKIP() << "the locale " << localeName() << " isn't installed";
    Units::expectInFreshProcess(&runWorkedExpressions);
}

} // namespace

} // namespace Vn::Translations
