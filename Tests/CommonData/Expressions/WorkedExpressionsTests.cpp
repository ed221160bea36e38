#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"

#include <algorithm>
#include <set>

#include "Platform/Base/UnitTest.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Settings = Units::UnitDisplaySettings;

std::vector<UnitTest *> smokeTests() {
    std::vector<UnitTest *> tests;
    for (UnitTest * const test : UnitTest::all())
        if (test->group() == "SmokeTest") tests.push_back(test);
    return tests;
}

void checkPassed(std::string_view name, std::size_t atLeast, wchar_t const * note) {
    for (UnitTest * const test : smokeTests()) {
        if (test->name() != name) continue;
        UnitTest::Report const report = UnitTest::run(*test);
        for (std::wstring const & failure : report.failures) ADD_FAILURE() << shown(failure);
        EXPECT_GE(report.assertions, atLeast);
        EXPECT_EQ(report.notes, std::vector<std::wstring>{note});
        return;
    }
    FAIL() << "no self-check " << name;
}

TEST(WorkedExpressionsTests, SelfChecksAreThere) {
    std::vector<std::string> names;
    for (UnitTest * const test : smokeTests()) names.push_back(test->name());
    EXPECT_EQ(names,
              (std::vector<std::string>{"basicExpressionTests", "unitDisplaySettingsTests"}));
}

// 244 rows parse; each of the 238 that evaluate has a value, texts, and a rebuilt text to read
// again.
TEST(WorkedExpressionsTests, BasicExpressionTestsPass) {
    checkPassed("basicExpressionTests", 266 * 2 + 244 + 238 * 7,
                L"266 rows, each rebuilt text read again");
}

TEST(WorkedExpressionsTests, UnitDisplaySettingsTestsPass) {
    checkPassed("unitDisplaySettingsTests", 42 * 6, L"42 rows and 3 control rows");
}

TEST(WorkedExpressionsTests, FirstTableHasItsRows) {
    auto const rows = workedExpressions();
    EXPECT_EQ(rows.size(), 266U);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(), [](auto const & row) { return !row.parsed; }),
              22);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](auto const & row) { return row.parsed && !row.evaluates; }),
              6);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](auto const & row) { return row.displayUnit[0] != L'\0'; }),
              5);
    std::set<std::pair<std::wstring, std::wstring>> different;
    for (WorkedExpression const & row : rows) {
        EXPECT_TRUE(row.parsed || !row.evaluates) << shown(row.expression);
        // Every row that evaluates pins its texts.
        EXPECT_EQ(row.formattedResult[0] != L'\0', row.evaluates) << shown(row.expression);
        EXPECT_EQ(row.rebuiltExpression[0] != L'\0', row.evaluates && !row.displayUnit[0])
            << shown(row.expression);
        different.emplace(row.expression, std::wstring(row.context) + L"|" + row.displayUnit);
    }
    EXPECT_EQ(different.size(), rows.size());
}

TEST(WorkedExpressionsTests, SecondTableHasItsRows) {
    auto const rows = workedDisplays();
    EXPECT_EQ(rows.size(), 45U);
    std::vector<std::wstring> controls;
    for (WorkedDisplay const & row : rows) {
        Settings settings = nonStandardSettings();
        if (applyControlRow(row, settings)) {
            controls.push_back(row.expression);
            continue;
        }
        for (wchar_t const * const text :
             {row.expression, row.context, row.formattedResultStandard,
              row.rebuiltExpressionStandard, row.formattedResultNonStandard,
              row.rebuiltExpressionNonStandard})
            EXPECT_NE(text[0], L'\0') << shown(row.expression);
    }
    EXPECT_EQ(controls, (std::vector<std::wstring>{L"ARCHITECTURAL", L"HIDETRAILINGZEROES",
                                                   L"NOHIDETRAILINGZEROESNOSCIENTIFIC"}));
}

TEST(WorkedExpressionsTests, ContextsOfTheTables) {
    EXPECT_FALSE(workedContext(L"?").hasExpectedUnits());
    EXPECT_TRUE(workedContext(L"").hasExpectedUnits());
    EXPECT_TRUE(workedContext(L"").expectedUnits()->isEmpty());
    EXPECT_EQ(workedContext(L"m / (s s)").expectedUnits()->toString(),
              L"(meter) / (second*second)");
}

TEST(WorkedExpressionsTests, NonStandardSettingsAndTheirChanges) {
    Settings settings = nonStandardSettings();
    EXPECT_EQ(settings.generalPrecision(), 4);
    EXPECT_EQ(settings.angularPrecision(), 2);
    EXPECT_TRUE(settings.scientificNotation());
    EXPECT_EQ(settings.scientificPrecision(), 4);
    EXPECT_FALSE(settings.shouldDisplayAbbreviation());
    EXPECT_FALSE(settings.compressUnits());
    EXPECT_FALSE(settings.isDecimalPointFullStop());
    EXPECT_EQ(settings.lengthDisplay(), Units::LengthFractional);
    EXPECT_EQ(settings.degreeDisplay(), Units::DegreeDegMinSec);
    EXPECT_FALSE(settings.hideTrailingZeroes());
    EXPECT_EQ(settings.useScientificNotationAboveThreshold(), 1000.0);
    EXPECT_EQ(settings.useScientificNotationBelowThreshold(), 0.0001);
    for (WorkedDisplay const & row : workedDisplays()) applyControlRow(row, settings);
    EXPECT_EQ(settings.lengthDisplay(), Units::LengthArchitectural);
    EXPECT_EQ(settings.angularPrecision(), 5);
    EXPECT_EQ(settings.minimumPrecision(), 0);
    EXPECT_FALSE(settings.hideTrailingZeroes());
    EXPECT_FALSE(settings.scientificNotation());
}

// Some of them stand here too, so that a change of the tables alone is noticed.
TEST(WorkedExpressionsTests, SomeRowsStandHereToo) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        double value;
        wchar_t const * formatted;
        wchar_t const * rebuilt;
    };
    constexpr Row c_rows[] = {
        {L"2cm*2 + 3cm/2 - 2^3 + 4%3", L"cm", -1.5, L"-1.50 cm",
         L"2 cm * 2 + 3 cm / 2 - ( 2 ^ 3 ) * 1 cm + ( 4 % 3 ) * 1 cm"},
        {L"3kg* cos(2 deg * 30)", L"kg", 1.5, L"1.50 kg", L"3 kg * cos(2 deg * 30)"},
        {L"3 * cos(40 + 20deg)", L"cm", 1.5, L"1.50 cm", L"( 3 * cos(40 deg + 20 deg) ) * 1 cm"},
        {L"max(2in;3)", L"cm", 5.08, L"5.08 cm", L"max(2 in; 3 cm)"},
        {L"min(2in;3)", L"cm", 3.0, L"3.00 cm", L"min(2 in; 3 cm)"},
        {L"pow(E; 2) - exp(2)", L"", 0.0, L"0.00", L"pow(E; 2) - exp(2)"},
        {L"asin(0.5) * 180 / PI", L"?", 30.0, L"30.00 rad", L"asin(0.5) * 180 / PI"},
        {L"pow(0.5 s;-1)", L"Hz", 2.0, L"2.00 Hz", L"pow(0.5 s; -1)"},
        {L"(68F) ^ 2 / 10 C", L"C", 303.51315722559, L"30.353 C", L"( 68 F ) ^ 2 / 10 C"},
        {L"10W/(21C - 68F)", L"?", 100000.0, L"10.00 W / C", L"10 W / ( 21 C - 68 F )"},
        {L"10W/F", L"?", 180000.0, L"10.00 W / F", L"10 W / F"},
    };
    for (Row const & row : c_rows) {
        Expression const expression(row.text, contextOf(row.context));
        ASSERT_TRUE(expression.value()) << shown(row.text);
        EXPECT_NEAR(*expression.value(), row.value, 1e-8) << shown(row.text);
        EXPECT_EQ(
            expression.formatted(Units::ValueAndUnit, Settings::standard(), expression.context()),
            row.formatted);
        EXPECT_EQ(expression.rebuilt(), row.rebuilt);
    }
}

} // namespace

} // namespace Vn::Expressions
