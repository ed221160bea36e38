// The texts of a tree: the value for the user, and the expression again.

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/TreeInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Settings = Units::UnitDisplaySettings;

struct Row {
    wchar_t const * text;
    wchar_t const * context;
    wchar_t const * rebuilt;
};

void check(std::vector<Row> const & rows, Units::EUnitDisplayMode mode = Units::ValueAndUnit,
           Change const & change = {}) {
    for (Row const & row : rows) {
        Expression const expression(row.text, contextOf(row.context));
        EXPECT_TRUE(expression) << shown(row.text);
        EXPECT_EQ(expression.rebuilt(mode, standardBut(change)), row.rebuilt) << shown(row.text);
    }
}

void germanNumbers(Settings & settings) {
    settings.useCommaAsDecimalPoint();
    settings.generalPrecision(4);
    settings.minimumPrecision(0);
}

// ---- Numbers ------------------------------------------------------------------------------------

TEST(ReconstructionTests, NumbersComeBackAsTheyWereTyped) {
    check({
        {L"2", L"cm", L"2 cm"},
        {L"2.", L"cm", L"2 cm"},
        {L"2.0", L"cm", L"2.0 cm"},
        {L"2.000", L"cm", L"2.000 cm"},
        {L"02,10000", L"cm", L"2.10000 cm"},
        {L".2", L"cm", L"0.2 cm"},
        {L"1.9999", L"cm", L"1.9999 cm"},
        {L"20000", L"cm", L"20000 cm"},
        {L"0.0002", L"cm", L"0.0002 cm"},
        {L"2.2E0", L"cm", L"2.2E+00 cm"},
        {L".22E0", L"cm", L"2.20E-01 cm"},
        {L"22E-2", L"cm", L"2.2E-01 cm"},
        {L"2.00 gram", L"?", L"2.00 g"},
        {L"1 1/2", L"cm", L"1 1/2 cm"},
        {L"2 1/2\"", L"cm", L"2 1/2\""},
        {L"2 1/2 in", L"cm", L"2 1/2\""},
        {L"1\"", L"cm", L"1\""},
        {L"1' 9\"", L"in", L"1'-9\""},
        {L"2'", L"ft", L"2'-0\""},
        {L"3/4\"", L"in", L"3/4\""},
        {L"0' 3/4\"", L"in", L"0'- 3/4\""},
        {L"45", L"degree", L"45 deg"},
        {L"45 deg 31'", L"degree", L"45deg 31'"},
        {L"45 deg 30' 30\"", L"degree", L"45deg 30' 30\""},
        {L"45 deg 30' 30.25\"", L"degree", L"45deg 30' 30.25\""},
    });
}

TEST(ReconstructionTests, RoundingOfARebuiltNumberIsKept) {
    check({
        {L"177e3", L"?", L"2E+05"},
        {L"1/128", L"cm", L"1/64 cm"},
        {L"1/128", L"?", L"0.0078125"}, // only a unit has a fractional form
        {L"1 minute", L"?", L"1 min"},
    });
}

TEST(ReconstructionTests, OwnPrecisionTurnsHidingOfZeroesOff) {
    check({{L"2,0", L"cm", L"2,0 cm"}, {L"2", L"cm", L"2 cm"}, {L"2.500", L"cm", L"2,500 cm"}},
          Units::ValueAndUnit, germanNumbers);
}

TEST(ReconstructionTests, UnitAloneHasTheSettingsOfTheUser) {
    // It has no precision of its own, so hiding of zeroes isn't turned off.
    check({{L"cm", L"?", L"1.00"}}, Units::ValueOnly);
    check({{L"cm", L"?", L"1"}}, Units::ValueOnly, germanNumbers);
    check({{L"cm", L"?", L"cm"}, {L"3 / cm", L"?", L"3 / cm"}});
}

TEST(ReconstructionTests, NumberHasItsOwnFormWhateverTheUserPrefers) {
    auto const user = [](Settings & settings) {
        settings.lengthDisplay(Units::LengthArchitectural);
        settings.degreeDisplay(Units::DegreeDegMinSec);
        settings.generalPrecision(0);
        settings.scientificPrecision(9);
        settings.useScientificNotationAboveThreshold(0.0);
    };
    check({{L"2.5 in", L"?", L"2.5 in"},
           {L"2 1/2 in", L"?", L"2 1/2\""},
           {L"1.5 deg", L"?", L"1.5 deg"},
           {L"1.5E3 cm", L"?", L"1.5E+03 cm"}},
          Units::ValueAndUnit, user);
}

TEST(ReconstructionTests, FractionInACompoundUnitPrintsItsDecimals) {
    check({
        {L"1 1/2 m/s", L"?", L"1.5 m / s"},
        {L"1' 9\" / s", L"?", L"1.75000000 ft / s"},
        {L"45 deg 31' / s", L"?", L"45.5 deg / s"},
    });
}

// ---- Units --------------------------------------------------------------------------------------

TEST(ReconstructionTests, BareNumbersAppearWithTheUnitsTheyTook) {
    check({
        {L"1in+1", L"cm", L"1 in + 1 cm"},
        {L"1+1.0cm", L"in", L"1 in + 1.0 cm"},
        {L"1+(2+3)", L"cm", L"1 cm + ( 2 cm + 3 cm )"},
        {L"3-(1.5-0.5)", L"cm", L"3 cm - ( 1.5 cm - 0.5 cm )"},
        {L"-2", L"cm", L"-2 cm"},
        {L"-(2)", L"cm", L"-( 2 cm )"},
        {L"max(2in;3)", L"cm", L"max(2 in; 3 cm)"},
        {L"10", L"m / (s s)", L"10 m / s^2"},
    });
}

TEST(ReconstructionTests, WhatCannotShowUnitsIsWrapped) {
    check({
        {L"2*2", L"cm", L"( 2 * 2 ) * 1 cm"},
        {L"2^-1", L"cm", L"( 2 ^ -1 ) * 1 cm"},
        {L"4%3", L"cm", L"( 4 % 3 ) * 1 cm"},
        {L"6/3", L"cm", L"( 6 / 3 ) * 1 cm"},
        {L"cos(PI rad)", L"cm", L"( cos(PI rad) ) * 1 cm"},
        {L"(2*2)", L"cm", L"( ( 2 * 2 ) * 1 cm )"},
        {L"-(2*2)", L"cm", L"-( ( 2 * 2 ) * 1 cm )"},
        {L"2*2 + 3", L"cm", L"( 2 * 2 ) * 1 cm + 3 cm"},
        {L"3 + 2*2", L"cm", L"3 cm + ( 2 * 2 ) * 1 cm"},
        {L"3 * cos(2 * 30)", L"cm", L"( 3 * cos(( 2 * 30 ) * 1 deg) ) * 1 cm"},
        {L"2*2*2 + 3*3 + 1 cm", L"cm", L"( 2 * 2 * 2 ) * 1 cm + ( 3 * 3 ) * 1 cm + 1 cm"},
    });
}

TEST(ReconstructionTests, WrapIsTheSameInEveryMode) {
    check({{L"2*2", L"cm", L"( 2 * 2 ) * 1 cm"}}, Units::ValueOnly);
    check({{L"2*2cm + 1", L"cm", L"2 * 2 + 1"}}, Units::ValueOnly);
}

TEST(ReconstructionTests, UnitsAreWrittenByTheSettings) {
    auto const full = [](Settings & settings) {
        settings.displayAbbreviated(false);
        settings.compressUnits(false);
    };
    check({{L"9.81 m/s^2", L"?", L"9.81 meter / (second second)"},
           {L"2*2", L"km", L"( 2 * 2 ) * 1 kilometer"},
           {L"SpeedOfLight s", L"?", L"SpeedOfLight second"}},
          Units::ValueAndUnit, full);
    auto const symbols = [](Settings & settings) { settings.displaySymbol(true); };
    check({{L"20 dol", L"?", L"20 $"}, {L"1.5 in", L"?", L"1.5 \""}, {L"3 m", L"?", L"3 m"}},
          Units::ValueAndUnit, symbols);
}

TEST(ReconstructionTests, Modes) {
    check({{L"2 cm + 1 1/2 in", L"?", L"2 + 1 1/2"},
           {L"1' 9\"", L"?", L"1'-9\""},
           {L"2", L"cm", L"2"},
           {L"Gravity s s", L"?", L"Gravity"}},
          Units::ValueOnly);
    check({{L"2 cm + 1 1/2 in", L"?", L"cm + in"},
           {L"2", L"cm", L"cm"},
           {L"Gravity s s", L"?", L"Gravitys^2"}, // no space
           {L"PI", L"?", L"PI"},
           {L"2 * 2", L"?", L" * "}},
          Units::UnitOnly);
}

TEST(ReconstructionTests, UnitThatCancelsWritesNothing) {
    // The number is written as it counts, 2 over 2.54, with the decimals that were typed.
    check({{L"2 cm/cm", L"?", L"2"}, {L"cm/cm", L"?", L""}, {L"1 + 2 cm/in", L"?", L"1 + 1"}});
}

// ---- Signs and names ----------------------------------------------------------------------------

TEST(ReconstructionTests, OperatorsStandBetweenSpaces) {
    check({
        {L"1+2-3*4/5%6^7", L"?", L"1 + 2 - 3 * 4 / 5 % 6 ^ 7"},
        {L"((1))", L"?", L"( ( 1 ) )"},
        {L"--1", L"?", L"--1"},
        {L"max(1;2)", L"?", L"max(1; 2)"},
        {L"random()", L"?", L"random()"},
        {L"cos(0", L"?", L"cos(0 deg)"},
        {L"PI*E", L"?", L"PI * E"},
        {L"pow(10; (log(10^2))", L"?", L"pow(10; ( log(10 ^ 2) ))"},
    });
}

TEST(ReconstructionTests, LongChainsKeepTheirOrder) {
    std::wstring wanted = L"1";
    std::wstring text = L"1";
    wchar_t const * const operators[] = {L"+", L"-", L"*", L"/", L"%", L"^"};
    for (int i = 0; i < 600; ++i) {
        wchar_t const * const op = operators[i * 7 % 6];
        std::wstring const digit = std::to_wstring(i % 9 + 1);
        // A slash between two whole numbers could be a fraction.
        std::wstring const number = digit + L".5";
        text += op + number;
        wanted += L' ' + std::wstring(op) + L' ' + number;
    }
    EXPECT_EQ(Expression(text).rebuilt(), wanted);
}

// ---- By hand ------------------------------------------------------------------------------------

TEST(ReconstructionTests, UnitsFromAboveAreWrittenOnlyByWhatHasNone) {
    Tree * const tree = Tree::make();
    Units::ComplexUnit const & inch = Units::UnitInch::get()->asComplexUnit();
    Units::ComplexUnit const & second = Units::UnitSecond::get(1.0)->asComplexUnit();
    Settings const & standard = Settings::standard();
    NumericNode * const bare = tree->make<NumericNode>(nullptr, 2.0);
    EXPECT_EQ(bare->reconstructString(Units::ValueAndUnit, standard, &inch), L"2.00 in");
    EXPECT_EQ(bare->reconstructString(Units::ValueAndUnit, standard, nullptr), L"2.00");
    NumericNode * const own = tree->make<NumericNode>(nullptr, 2.0, &second);
    EXPECT_EQ(own->reconstructString(Units::ValueAndUnit, standard, &inch), L"2.00 s");
    Node * const product = tree->make<MultOpNode>(nullptr, bare, own);
    EXPECT_EQ(product->reconstructString(Units::ValueAndUnit, standard, &inch),
              L"( 2.00 * 2.00 s ) * 1 in");
    // Active default units go before those from above.
    Node * const paren = tree->make<ParenOpNode>(&second, bare);
    paren->useDefaultUnits(true);
    EXPECT_EQ(paren->reconstructString(Units::ValueAndUnit, standard, &inch), L"( 2.00 s )");
    EXPECT_EQ(paren->reconstructString(Units::ValueOnly, standard, &inch), L"( 2.00 )");
    Tree::destroy(tree);
}

// ---- Formatted values ---------------------------------------------------------------------------

TEST(FormattedValueTests, ValueIsShownInTheExpectedUnits) {
    struct FormattedRow {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * both;
        wchar_t const * value;
        wchar_t const * unit;
    };
    constexpr FormattedRow c_rows[] = {
        {L"2in", L"cm", L"5.08 cm", L"5.08", L"cm"},
        {L"2", L"?", L"2.00", L"2.00", L""},
        {L"30 mph * 1 hr", L"?", L"30.00 mph hr", L"30.00", L"mph hr"},
        {L"30 mph / 10 mps", L"", L"1.341", L"1.341", L""},
        {L"45", L"degree", L"45.0 deg", L"45.0", L"deg"},
        {L"asin(0.5) * 180 / PI", L"?", L"30.00 rad", L"30.00", L"rad"},
        {L"3 / m s", L"?", L"3.00 / (m s)", L"3.00", L"/ (m s)"},
        {L"9.81 m/s^2", L"?", L"9.81 m / s^2", L"9.81", L"m / s^2"},
        {L"20C", L"F", L"68.00 F", L"68.00", L"F"},
        {L"1E308", L"?", L"1.000E+308", L"1.000E+308", L""},
    };
    for (FormattedRow const & row : c_rows) {
        Expression const expression(row.text, contextOf(row.context));
        auto const formatted = [&](Units::EUnitDisplayMode mode) {
            return expression.formatted(mode, Settings::standard(), expression.context());
        };
        EXPECT_EQ(formatted(Units::ValueAndUnit), row.both) << shown(row.text);
        EXPECT_EQ(formatted(Units::ValueOnly), row.value) << shown(row.text);
        EXPECT_EQ(formatted(Units::UnitOnly), row.unit) << shown(row.text);
    }
}

TEST(FormattedValueTests, LengthAndAngleDisplayOfTheUser) {
    struct DisplayRow {
        wchar_t const * text;
        wchar_t const * context;
        Change change;
        wchar_t const * formatted;
    };
    auto const feet = [](Settings & s) { s.lengthDisplay(Units::LengthArchitectural); };
    auto const fractions = [](Settings & s) { s.lengthDisplay(Units::LengthFractional); };
    auto const minutes = [](Settings & s) {
        s.degreeDisplay(Units::DegreeDegMinSec);
        s.angularPrecision(3);
    };
    DisplayRow const rows[] = {
        {L"6 3/4\"", L"in", feet, L"0'-6 3/4\""}, {L"1' 9\"", L"ft", feet, L"1'-9\""},
        {L"3/4", L"ft", fractions, L"9\""},       {L"-1/2", L"in", fractions, L"- 1/2\""},
        {L"2.5", L"cm", feet, L"2.50 cm"},        {L"45.5", L"deg", minutes, L"45deg 30' 0\""},
        {L"1 in s", L"?", feet, L"1.00 in s"}, // only a unit that stands alone has special forms
    };
    for (DisplayRow const & row : rows) {
        Expression const expression(row.text, contextOf(row.context));
        EXPECT_EQ(expression.formatted(Units::ValueAndUnit, standardBut(row.change),
                                       expression.context()),
                  row.formatted)
            << shown(row.text);
    }
}

} // namespace

} // namespace Vn::Expressions
