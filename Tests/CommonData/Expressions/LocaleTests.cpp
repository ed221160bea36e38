// The same texts under every locale of the process.

#include <clocale>
#include <locale>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Base/TextCommandService.h"
#include "Platform/Base/UnitTest.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Settings = Units::UnitDisplaySettings;

// A comma in numbers, and their digits in groups of one.
template <class Character>
class OddNumbers : public std::numpunct<Character> {
    Character do_decimal_point() const override { return ','; }
    Character do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
};

// The locale of C alone, or that of C++, which sets that of C too.
enum class Of { C, Cpp };

struct Locale {
    char const * name; // without its encoding; null for the odd numbers
    Of of;
};

void PrintTo(Locale const & locale, std::ostream * out) {
    *out << (locale.name ? locale.name : "OddNumbers") << (locale.of == Of::C ? "_C" : "_Cpp");
}

// The names that a locale may have on this system.
std::vector<std::string> systemNames(std::string const & name) {
#ifdef _WIN32
    // In C alone: the runtime of C++ knows no locales but the classic one here.
    static std::map<std::string, std::string> const s_names{{"de_DE", "German_Germany"},
                                                            {"fr_FR", "French_France"},
                                                            {"ja_JP", "Japanese_Japan"},
                                                            {"tr_TR", "Turkish_Turkey"}};
    return {s_names.at(name)};
#else
    return {name + ".UTF-8", name + ".utf8"};
#endif
}

// Puts both locales back in the end.
class LocaleGuard {
public:
    LocaleGuard() = default;
    LocaleGuard(LocaleGuard const &) = delete;
    LocaleGuard & operator=(LocaleGuard const &) = delete;
    ~LocaleGuard() {
        std::locale::global(std::locale::classic());
        std::setlocale(LC_ALL, "C");
    }

    // False if there is no such locale here.
    bool enter(Locale const & locale) {
        if (!locale.name) {
            std::locale const odd(std::locale::classic(), new OddNumbers<char>);
            std::locale::global(std::locale(odd, new OddNumbers<wchar_t>));
            return true;
        }
        for (std::string const & full : systemNames(locale.name)) {
            if (!std::setlocale(LC_ALL, full.c_str())) continue;
            try {
                if (locale.of == Of::Cpp) std::locale::global(std::locale(full));
                return true;
            } catch (std::runtime_error const &) {
                return false; // a runtime may know it in C alone
            }
        }
        return false;
    }
};

class LocaleTests : public testing::TestWithParam<Locale> {
protected:
    void SetUp() override {
        if (!m_guard.enter(GetParam())) GTEST_SKIP() << "no locale " << GetParam().name << " here";
    }

private:
    LocaleGuard m_guard;
};

TEST_P(LocaleTests, WorkedExpressions) {
    auto const reports = UnitTest::run("SmokeTest");
    ASSERT_EQ(reports.size(), 2U);
    for (UnitTest::Report const & report : reports) {
        EXPECT_GT(report.assertions, 200U);
        for (std::wstring const & failure : report.failures) ADD_FAILURE() << shown(failure);
    }
}

TEST_P(LocaleTests, NumbersAndNames) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * formatted;
        wchar_t const * rebuilt;
    };
    constexpr Row c_rows[] = {
        {L"1234.5", L"cm", L"1234.50 cm", L"1234.5 cm"},
        {L"1234,5", L"cm", L"1234.50 cm", L"1234.5 cm"},
        {L"1234567.5 mm", L"km", L"1.235 km", L"1234567.5 mm"},
        {L"2.5E6", L"cm", L"2.500E+06 cm", L"2.5E+06 cm"},
        {L"45 deg 30' 30.25\"", L"deg", L"45.5 deg", L"45deg 30' 30.25\""},
        {L"1 YARD", L"cm", L"91.44 cm", L"1 yd"},
        {L"20 f", L"F", L"20.00 F", L"20 F"},
        {L"m^12", L"?", L"1.00 m^12", L"m^12"},
    };
    for (Row const & row : c_rows) {
        Expression const expression(row.text, contextOf(row.context));
        EXPECT_EQ(
            expression.formatted(Units::ValueAndUnit, Settings::standard(), expression.context()),
            row.formatted)
            << shown(row.text);
        EXPECT_EQ(expression.rebuilt(), row.rebuilt) << shown(row.text);
    }
}

TEST_P(LocaleTests, MessagesAndCommands) {
    EXPECT_EQ(outcome(std::wstring(1234567, L' ') + L"1 x"), L"Parse error at character 1234569");
    struct Row {
        wchar_t const * line;
        wchar_t const * beginning;
    };
    constexpr Row c_rows[] = {
        {L"Expressions.Parse 1234567.5", L"1234567.5 gave a parse result Success!\r\n"
                                         L"Evaluation succeeded with a result of 1.23457e+06\r\n"},
        {L"Expressions.Parse 1234.5", L"1234.5 gave a parse result Success!\r\n"
                                      L"Evaluation succeeded with a result of 1234.5\r\n"},
    };
    for (Row const & row : c_rows) {
        std::wstring const text = TextCommandService::get().run(row.line).text;
        EXPECT_EQ(text.substr(0, std::wstring_view(row.beginning).size()), row.beginning);
    }
}

TEST_P(LocaleTests, ClassesOfCharacters) {
    // Blanks, punctuation and digits are those of the system, whatever the C library says.
    EXPECT_EQ(outcome(L"1\u00A0cm"), L"Success!");
    EXPECT_EQ(outcome(L"1\u3000cm"), L"Success!");
    EXPECT_EQ(outcome(L"1 \u00A3"), L"Parse error at character 2");
    EXPECT_EQ(outcome(L"\u0661"), L"Abrupt Termination");
    EXPECT_EQ(outcome(L"1 \u00B5"), L"Success!");
    EXPECT_EQ(outcome(L"45\u00B0 30' + 1 deg"), L"Success!");
}

TEST_P(LocaleTests, FormatterPrintsTheSame) {
    valueFormatter const & formatter = *valueFormatter::get();
    Settings const & standard = Settings::standard();
    EXPECT_EQ(formatter.formatDecimal(1234.5, standard), L"1234.50");
    EXPECT_EQ(formatter.formatDecimal(1.5e300, standard), L"1.500E+300");
    EXPECT_EQ(formatter.formatFractional(12345678.5), L"12345678 1/2");
    EXPECT_EQ(formatter.formatArchitectural(12345.75, standard), L"12345'-9\"");
    EXPECT_EQ(formatter.formatDegMinSec(12345.5, standard), L"12345deg 30'");
    EXPECT_EQ(formatter.formatExponent(12345), L"^12345");
}

INSTANTIATE_TEST_SUITE_P(Installed, LocaleTests,
                         testing::Values(Locale{"de_DE", Of::C}, Locale{"de_DE", Of::Cpp},
                                         Locale{"fr_FR", Of::C}, Locale{"fr_FR", Of::Cpp},
                                         Locale{"ja_JP", Of::C}, Locale{"ja_JP", Of::Cpp},
                                         Locale{"tr_TR", Of::C}, Locale{nullptr, Of::Cpp}),
                         [](auto const & instance) {
                             return testing::PrintToString(instance.param);
                         });

// The last lookup of a unit folds case by the global locale of C++, in which a Turkish capital I is
// no "i": that is all that changes.
TEST(TurkishLocaleTests, CapitalIIsAnotherLetter) {
    LocaleGuard guard;
    if (!guard.enter({"tr_TR", Of::Cpp})) GTEST_SKIP() << "no locale tr_TR here";
    EXPECT_EQ(outcome(L"1 inch"), L"Success!");
    EXPECT_EQ(outcome(L"1 iNCH"), L"Success!");
    EXPECT_EQ(outcome(L"1 INCH"), L"Parse error at character 2");
    EXPECT_EQ(outcome(L"1 YD"), L"Success!");
    EXPECT_EQ(outcome(L"1 MILE"), L"Parse error at character 2");
    std::vector<std::wstring> failures;
    for (UnitTest::Report const & report : UnitTest::run("SmokeTest"))
        failures.insert(failures.end(), report.failures.begin(), report.failures.end());
    EXPECT_EQ(failures, (std::vector<std::wstring>{L"\"1IN\" in \"cm\": parses",
                                                   L"\"1InCH\" in \"cm\": parses",
                                                   L"\"1INCH\" in \"cm\": parses"}));
}

} // namespace

} // namespace Vn::Expressions
