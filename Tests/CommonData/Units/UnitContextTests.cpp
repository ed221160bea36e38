// In which units a result is wanted.

#include "Server/CommonData/Units/UnitContext.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Server/CommonData/Units/UnitSystem.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"

namespace Vn::Units {

namespace {

using Expressions::EResult;
using Expressions::Expression;

struct Destroy {
    void operator()(ComplexUnit * units) const { ComplexUnit::destroy(units); }
};
using OwnedUnits = std::unique_ptr<ComplexUnit, Destroy>;

TEST(UnitContextTests, DefaultExpectsNothing) {
    UnitContext const context;
    EXPECT_FALSE(context.hasExpectedUnits());
    EXPECT_EQ(context.expectedUnits(), nullptr);
    EXPECT_EQ(context.findSimpleExpectedUnits(), nullptr);
    EXPECT_FALSE(context.activeUnitSystem());
    ComplexUnit out(UnitGram::get(1.0));
    for (ComplexUnit const & units : {ComplexUnit(), complexUnit({L"cm"}), complexUnit({L"N"})})
        EXPECT_FALSE(context.findDefault(units, out));
    EXPECT_EQ(abbreviations(out), L"g");
    EXPECT_EQ(context.findDefault(UnitTypeLength), nullptr);
    EXPECT_EQ(shown(L"2 cm", context), L"2.00 cm");
    EXPECT_EQ(shown(L"2", context), L"2.00");
}

TEST(UnitContextTests, ExpectsASimpleUnit) {
    UnitContext const context(UnitInch::get());
    EXPECT_TRUE(context.hasExpectedUnits());
    ASSERT_NE(context.expectedUnits(), nullptr);
    EXPECT_EQ(abbreviations(*context.expectedUnits()), L"in");
    EXPECT_EQ(context.findSimpleExpectedUnits(), UnitInch::get());
    EXPECT_FALSE(context.activeUnitSystem());
}

TEST(UnitContextTests, ExpectsACopyOfAComplexUnit) {
    ComplexUnit units = complexUnit({L"m"}, {L"s"});
    UnitContext const context(&units);
    units.clear();
    ASSERT_TRUE(context.hasExpectedUnits());
    EXPECT_NE(context.expectedUnits(), &units);
    EXPECT_EQ(abbreviations(*context.expectedUnits()), L"m / s");
    EXPECT_EQ(context.findSimpleExpectedUnits(), nullptr);
}

TEST(UnitContextTests, ExpectsWhatATextParsesTo) {
    UnitContext const centimeters(std::wstring(L"cm"));
    ASSERT_TRUE(centimeters.hasExpectedUnits());
    EXPECT_EQ(centimeters.findSimpleExpectedUnits(), UnitMeter::get(0.01));
    UnitContext const acceleration(std::wstring(L"m / (s s)"));
    ASSERT_TRUE(acceleration.hasExpectedUnits());
    EXPECT_EQ(abbreviations(*acceleration.expectedUnits()), L"m / s s");
}

TEST(UnitContextTests, EmptyTextExpectsAUnitlessResult) {
    UnitContext const context{std::wstring()};
    ASSERT_TRUE(context.hasExpectedUnits());
    EXPECT_TRUE(context.expectedUnits()->isEmpty());
}

TEST(UnitContextTests, TextThatDoesntParseExpectsNothing) {
    for (wchar_t const * text : {L"nonsense", L"2 cm", L"cm^0.5", L"CM", L"m /", L"("}) {
        UnitContext const context{std::wstring(text)};
        EXPECT_FALSE(context.hasExpectedUnits()) << testing::PrintToString(text);
        EXPECT_EQ(context.expectedUnits(), nullptr);
    }
}

TEST(UnitContextTests, CloneIsTheCallers) {
    UnitContext const context(UnitInch::get());
    OwnedUnits const clone(context.cloneExpectedUnits());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), context.expectedUnits());
    EXPECT_TRUE(clone->isIdentical(context.expectedUnits()));
}

TEST(UnitContextTests, IsCopied) {
    UnitContext const context(std::wstring(L"N"));
    UnitContext const copy(context);
    UnitContext assigned;
    assigned = copy;
    ASSERT_TRUE(assigned.hasExpectedUnits());
    EXPECT_NE(assigned.expectedUnits(), context.expectedUnits());
    EXPECT_EQ(assigned.findSimpleExpectedUnits(), UnitNewton::get(1.0));
    assigned = UnitContext();
    EXPECT_FALSE(assigned.hasExpectedUnits());
}

// Several threads may read one context, so it must be complete once it is built, however that was.
TEST(UnitContextTests, IsReadFromManyThreads) {
    UnitContext const byUnit(UnitInch::get());
    ComplexUnit const speed = complexUnit({L"m"}, {L"s"});
    UnitContext const byUnits(&speed);
    UnitContext const byText(std::wstring(L"m / s"));
    UnitContext const copy(byText);
    UnitContext assigned;
    assigned = byText;
    for (UnitContext const * const context :
         {&byUnit, &byUnits, &byText, &copy, static_cast<UnitContext const *>(&assigned)}) {
        EXPECT_TRUE(context->expectedUnits()->isBaseValid());
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([context] {
                ComplexUnit out;
                EXPECT_TRUE(context->findDefault(ComplexUnit(*context->expectedUnits()), out));
            });
    }
}

TEST(UnitContextTests, DefaultOfADimensionIsWhatIsExpected) {
    UnitContext const context(UnitInch::get());
    ComplexUnit out(UnitGram::get(1.0));
    EXPECT_TRUE(context.findDefault(complexUnit({L"km"}), out));
    EXPECT_EQ(abbreviations(out), L"in");
    EXPECT_FALSE(context.findDefault(complexUnit({L"s"}), out));
    EXPECT_EQ(abbreviations(out), L"in");
    UnitContext const unitless(&ComplexUnit::none());
    EXPECT_TRUE(unitless.findDefault(complexUnit({L"cm"}, {L"in"}), out));
    EXPECT_TRUE(out.isEmpty());
}

TEST(UnitContextTests, DefaultOfAKindIsTheLoneUnitExpected) {
    UnitContext const inch(UnitInch::get());
    EXPECT_EQ(inch.findDefault(UnitTypeLength), UnitInch::get());
    EXPECT_EQ(inch.findDefault(UnitTypeMass), nullptr);
    UnitContext const speed(std::wstring(L"m / s"));
    EXPECT_EQ(speed.findDefault(UnitTypeLength), nullptr);
    EXPECT_EQ(speed.findDefault(UnitTypeSpeed), nullptr);
    UnitContext const mph(std::wstring(L"mph"));
    EXPECT_EQ(mph.findDefault(UnitTypeSpeed), UnitMilesPerHour::get());
}

TEST(UnitContextTests, EmptyUnitSystemIsNone) {
    UnitContext const context{StrongRef<UnitSystem>()};
    EXPECT_FALSE(context.hasExpectedUnits());
    EXPECT_FALSE(context.activeUnitSystem());
    EXPECT_EQ(context.findDefault(UnitTypeLength), nullptr);
}

TEST(UnitContextTests, BareNumberTakesTheExpectedUnit) {
    UnitContext const inches(std::wstring(L"in"));
    Expression const two(L"2", inches);
    ASSERT_TRUE(two.value().has_value());
    EXPECT_NEAR(*two.value(), 5.08, 1e-8);
    EXPECT_EQ(shown(L"2", inches), L"2.00 in");
}

TEST(UnitContextTests, OtherDimensionIsRefused) {
    struct Row {
        wchar_t const * expression;
        wchar_t const * context;
        EResult result;
    };
    Row const rows[] = {
        {L"2in", L"kg", EResult::unitMismatch},
        {L"2kg", L"cm", EResult::unitMismatch},
        {L"2 cm", L"", EResult::unitMismatch},
        {L"1in+1gram", L"", EResult::unitsDontEval},
        {L"(30 mph / 10) mps", L"", EResult::failedToParse},
    };
    for (Row const & row : rows) {
        Expression const expression(row.expression, UnitContext(std::wstring(row.context)));
        EXPECT_FALSE(expression) << testing::PrintToString(row.expression);
        EXPECT_TRUE(expression.result().result() == row.result)
            << testing::PrintToString(row.expression);
    }
}

// An empty unit expects a unitless result, which isn't the same as expecting nothing.
TEST(UnitContextTests, EmptyUnitExpectsAUnitlessResult) {
    UnitContext const unitless(&ComplexUnit::none());
    ASSERT_TRUE(unitless.hasExpectedUnits());
    EXPECT_EQ(shown(L"30 mph / 10 mps", unitless), L"1.341");
    EXPECT_EQ(shown(L"cos(60)", unitless), L"0.50");
    EXPECT_TRUE(Expression(L"2 cm", UnitContext()));
}

TEST(UnitContextTests, ATextIsAUnitOrIsNone) {
    struct Row {
        wchar_t const * text;
        wchar_t const * units;
    };
    Row const rows[] = {
        {L"cm", L"cm"},
        {L"kg m / s^2", L"kg m / s s"},
        {L"m / (s s)", L"m / s s"},
        {L"N * m", L"N m"},
        {L"m * C", L"m C"},
        {L"/ s", L" / s"},
        {L" C ", L"C"},
        {L"W / (m K)", L"W / m K"},
        {L"kilometer", L"km"},
        {L"\u00B0", L"deg"},
        {L"m^2 s", L"m m s"},
        {L"m^2/ s", L"m m / s"},
    };
    for (Row const & row : rows) {
        std::optional<ComplexUnit> const unit = UnitContext::parse(row.text);
        ASSERT_TRUE(unit) << testing::PrintToString(row.text);
        EXPECT_EQ(abbreviations(*unit), row.units) << testing::PrintToString(row.text);
        EXPECT_TRUE(UnitContext::parse(Text::toUtf8(row.text)));
    }
    EXPECT_TRUE(UnitContext::parse("")->isEmpty());
    for (wchar_t const * const text :
         {L"2 cm",   L"cm * 2", L"m + 3 m", L"m - m",    L"5",    L"PI",     L"m PI",
          L"m * PI", L"cos(0)", L"cm^0.5",  L"cm^",      L"m /",  L"m / (s", L")",
          L"()",     L"* m",    L"CM",      L"nonsense", L"%",    L"m = m",  L"m;",
          L"m 3",    L"1 / s",  L"\"",      L"'",        L"^2",   L"m^2/2",  L"m^4/2 s",
          L"m^2^2",  L"^",      L"m * ^2",  L"m^-2",     L"m^(2)"})
        EXPECT_FALSE(UnitContext::parse(text)) << testing::PrintToString(text);
    EXPECT_FALSE(UnitContext::parse("\xC2"));
    EXPECT_FALSE(UnitContext::parse(std::wstring(10'000'000, L'm')));
    EXPECT_FALSE(UnitContext::parse(std::string(1'000'000, '(')));
}

TEST(UnitContextTests, ATextMayBeUtf8) {
    EXPECT_EQ(abbreviations(*UnitContext("\xC2\xB0").expectedUnits()), L"deg");
    EXPECT_EQ(abbreviations(*UnitContext(L"m / s").expectedUnits()), L"m / s");
    EXPECT_FALSE(UnitContext("\xB0").hasExpectedUnits());
    EXPECT_FALSE(UnitContext("nonsense").hasExpectedUnits());
}

} // namespace

} // namespace Vn::Units
