#include "Server/CommonData/Expressions/ParserInternal.h"

#include <cmath>

#include "Server/CommonData/Expressions/Interface.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::ComplexUnit;

// What parses and evaluates.
struct Good {
    wchar_t const * text;
    wchar_t const * context;
    double value;
    wchar_t const * rebuilt;
};

void check(std::vector<Good> const & rows) {
    for (Good const & row : rows) {
        Expression const expression(row.text, contextOf(row.context));
        EXPECT_EQ(expression.result().toString(), L"Success!") << shown(row.text);
        ASSERT_TRUE(expression) << shown(row.text);
        ASSERT_TRUE(expression.value()) << shown(row.text);
        EXPECT_NEAR(*expression.value(), row.value, 1e-8) << shown(row.text);
        EXPECT_EQ(expression.rebuilt(), row.rebuilt) << shown(row.text);
    }
}

struct Bad {
    std::wstring text;
    int position; // of the failure; -1 for an abrupt termination
};

void checkFailures(std::vector<Bad> const & rows) {
    for (Bad const & row : rows) {
        std::wstring const wanted =
            row.position < 0 ? L"Abrupt Termination"
                             : L"Parse error at character " + std::to_wstring(row.position);
        EXPECT_EQ(outcome(row.text), wanted) << shown(row.text);
    }
}

void checkParses(std::vector<wchar_t const *> const & texts) {
    for (wchar_t const * const text : texts) EXPECT_EQ(outcome(text), L"Success!") << shown(text);
}

// ---- Operators ----------------------------------------------------------------------------------

TEST(ParserTests, SumsAndProductsGroupToTheLeft) {
    check({
        {L"10-4-3", L"?", 3.0, L"10 - 4 - 3"},
        {L"10-4+3", L"?", 9.0, L"10 - 4 + 3"},
        {L"100/5/5", L"?", 4.0, L"100 / 5 / 5"},
        {L"17%10%4", L"?", 3.0, L"17 % 10 % 4"},
        {L"12/5*5", L"?", 12.0, L"12 / 5 * 5"},
        {L"2+3*4", L"?", 14.0, L"2 + 3 * 4"},
        {L"2*3+4", L"?", 10.0, L"2 * 3 + 4"},
        {L"(2+3)*4", L"?", 20.0, L"( 2 + 3 ) * 4"},
    });
}

TEST(ParserTests, PowerStandsOnTheLevelOfProducts) {
    check({
        {L"2*3^2", L"?", 36.0, L"2 * 3 ^ 2"},
        {L"2^3^2", L"?", 64.0, L"2 ^ 3 ^ 2"},
        {L"2^3*2", L"?", 16.0, L"2 ^ 3 * 2"},
        {L"100/5^2", L"?", 400.0, L"100 / 5 ^ 2"},
        {L"1+2^3", L"?", 9.0, L"1 + 2 ^ 3"},
        {L"20 J / (10 V)^2", L"?", 4.0, L"20 J / ( 10 V ) ^ 2"},
        {L"20 J / ((10 V)^2)", L"?", 2e-05, L"20 J / ( ( 10 V ) ^ 2 )"},
    });
}

TEST(ParserTests, SignBindsTighterThanAllOperators) {
    check({
        {L"2^-1", L"?", 0.5, L"2 ^ -1"},
        {L"-2^2", L"?", 4.0, L"-2 ^ 2"},
        {L"2*-3", L"?", -6.0, L"2 * -3"},
        {L"2--3", L"?", 5.0, L"2 - -3"},
        {L"2+-3", L"?", -1.0, L"2 + -3"},
        {L"--2", L"?", 2.0, L"--2"},
        {L"---2", L"?", -2.0, L"---2"},
        {L"-(2+3)", L"?", -5.0, L"-( 2 + 3 )"},
        {L"-cos(0)", L"?", -1.0, L"-cos(0 deg)"},
        {L"-PI", L"?", -3.141592653589793, L"-PI"},
    });
    Expression const noReal(L"-10^0.5");
    EXPECT_TRUE(noReal);
    EXPECT_FALSE(noReal.value());
}

TEST(ParserTests, ValuesAreNeverMultipliedByStandingTogether) {
    checkFailures({
        {L"2(3)", 1},
        {L"2 PI", 2},
        {L"(2)(3)", 3},
        {L"2 3", 2},
        {L"2 1/3", 2},
        {L"(30 mph / 10) mps", 14},
        {L"PI PI", 3},
        {L"cos(0) 2", 7},
    });
}

TEST(ParserTests, EqualsSignIsTakenByNoRule) {
    checkFailures({{L"2=2", 1}, {L"=", -1}, {L"= 2", 2}, {L"1+=2", 1}});
}

// ---- Numbers and their units --------------------------------------------------------------------

TEST(ParserTests, UnitsTakeAsMuchAsTheyCan) {
    check({
        {L"2 cm^3", L"?", 2.0, L"2 cm^3"},
        {L"(2 cm)^3", L"?", 8.0, L"( 2 cm ) ^ 3"},
        {L"8 cm cm cm", L"?", 8.0, L"8 cm^3"},
        {L"8 cm*cm*cm", L"?", 8.0, L"8 cm^3"},
        {L"10W/C", L"?", 100000.0, L"10 W / C"},
        {L"10 V / 5A", L"?", 20000.0, L"10 V / 5 A"},
        {L"3 / m s", L"?", 0.03, L"3 / m s"},
        {L"3 cm / s * 2", L"?", 6.0, L"3 cm / s * 2"},
        {L"1 m / s / s", L"?", 100.0, L"1 m / s^2"},
        {L"1 m / (s s)", L"?", 100.0, L"1 m / s^2"},
        {L"1 m / (s / kg)", L"?", 100.0, L"1 m kg / s"},
        {L"1 (m s)^2", L"?", 10000.0, L"1 m s m s"},
        {L"1 (m / s)^2", L"?", 10000.0, L"1 m^2 / s^2"},
        {L"1 ((m))", L"?", 100.0, L"1 m"},
        {L"1 m^2^3", L"?", 1e12, L"1 m^2 ^ 3"},
        {L"1 m^2 s", L"?", 10000.0, L"1 m^2 s"},
        {L"1 kW hr", L"?", 36000000000.0, L"1 kW hr"},
        {L"1 lux m^2", L"?", 1.0, L"1 lx m^2"},
    });
}

TEST(ParserTests, ExponentOfAUnitIsAnyWholeNumberAboveZero) {
    check({
        {L"1 m^1", L"?", 100.0, L"1 m"},
        {L"1 m^2.0", L"?", 10000.0, L"1 m^2"},
        {L"1 m^4/2", L"?", 10000.0, L"1 m^2"}, // a fraction is a number
        {L"1 m^1e1", L"?", 1e20, L"1 m^10"},
        {L"1 s^2\"", L"?", 2.54, L"1 s^2 in"}, // and so is a number of inches
    });
}

TEST(ParserTests, BadExponentOfAUnitFailsAtItsSign) {
    checkFailures({
        {L"2cm^0.5", 3},
        {L"cm^0.5", 2},
        {L"cm^-1", 2},
        {L"2cm^-1", 3},
        {L"cm^0", 2},
        {L"cm^(2)", 2},
        {L"cm^", 2},
        {L"cm^cm", 2},
        {L"2 m s^1.5", 5},
        {L"2(cm^0.5)", 1},
        {L"3 cm * acos(0) # rad^-1", 15},
    });
}

TEST(ParserTests, ProductOfMoreThan4096UnitFactorsIsABadExponent) {
    checkParses({L"1 m^4096", L"1 m^2048 s^2048", L"1 m^4095 / s", L"1 (m s)^2048", L"m^4096"});
    checkFailures({
        {L"1 m^4097", 3},
        {L"1 m^2048 s^2049", 10},
        {L"1 m^4096 s", 9}, // the name isn't taken
        {L"1 m^2000 s^3000", 10},
        {L"1 m^2000 s^2096 kg", 16},
        {L"1 m^2048 / s^2049", 12},
        {L"1 (m s)^2049", 7},
        {L"1 (m/s)^2049", 7},
        {L"2 cm^1000000000", 4},
        {L"2 cm^1E300", 4},
        {L"2 cm^99999999999999999999", 4},
    });
}

TEST(ParserTests, UnitWithoutANumberHasTheValueOfOne) {
    check({
        {L"cm", L"?", 1.0, L"cm"},
        {L"in", L"?", 2.54, L"in"},
        {L"m / s", L"?", 100.0, L"m / s"},
        {L"3 * in", L"?", 7.62, L"3 * in"},
        {L"3 / cm", L"?", 3.0, L"3 / cm"},
        {L"C", L"?", 274.16, L"C"},
    });
}

TEST(ParserTests, NameIsAFunctionThenAConstantThenAUnit) {
    check({
        {L"1 min", L"?", 60.0, L"1 min"},
        {L"min(1;2)", L"?", 1.0, L"min(1; 2)"},
        {L"E", L"?", 2.718281828459045, L"E"},
    });
    checkFailures({{L"min", -1}, {L"min 2", 4}});
}

TEST(ParserTests, UnitsAfterAConstantBelongToIt) {
    check({
        {L"Gravity s s", L"cm", 980.665, L"Gravity s^2"},
        {L"Gravity s^2", L"cm", 980.665, L"Gravity s^2"},
        {L"SpeedOfLight s", L"cm", 29979245800.0, L"SpeedOfLight s"},
        {L"Gravity km", L"?", 98066500.0, L"Gravity km"},
        {L"3 cm * acos(0) / PI rad", L"cm", 1.5, L"3 cm * acos(0) / PI rad"},
        // One unit with an offset converts the value as after a number.
        {L"PI C", L"?", 276.3015926535898, L"PI C"},
    });
    Expression const gravity(L"Gravity km");
    EXPECT_EQ(gravity.units()->toString(), L"(centimeter*kilometer) / (second*second)");
}

TEST(ParserTests, NegatedTemperatureIsBelowTheZeroOfItsScale) {
    check({
        {L"-40C", L"C", 233.16, L"-40 C"},
        {L"-40F", L"F", 233.16, L"-40 F"},
        {L"- 40 C", L"?", 233.16, L"-40 C"},
        {L"--40C", L"?", 313.16, L"40 C"},
        {L"2 C--40C", L"?", 275.16 - 233.16, L"2 C - -40 C"},
        // Only one unit alone has an offset.
        {L"-40 C s", L"?", -40.0, L"-40 C s"},
        {L"-40 K", L"?", -40.0, L"-40 K"},
        // Neither a bracket nor a unit without a number is a number with its unit.
        {L"-(40C)", L"?", -313.16, L"-( 40 C )"},
        {L"-C", L"?", -274.16, L"-C"},
        {L"-PI C", L"?", -276.3015926535898, L"-PI C"},
    });
}

TEST(ParserTests, FractionsAreReadBeforeDivisions) {
    check({
        {L"3 / 2 s", L"?", 1.5, L"1 1/2 s"},
        {L"3 / 1 s", L"?", 3.0, L"3 / 1 s"},
        {L"3 / s", L"?", 3.0, L"3 / s"},
        {L"3cm/2", L"?", 1.5, L"3 cm / 2"},
        {L"7 / (2.2)", L"?", 7.0 / 2.2, L"7 / ( 2.2 )"},
    });
    checkFailures({{L"7/2.2", 3}, {L"1/2E3", 3}});
}

// ---- Functions ----------------------------------------------------------------------------------

TEST(ParserTests, FunctionsTakeTheirCountOfArguments) {
    check({
        {L"abs(-2)", L"?", 2.0, L"abs(-2)"},
        {L"pow(2;3)", L"?", 8.0, L"pow(2; 3)"},
        {L"max(1+1;pow(2;2))", L"?", 4.0, L"max(1 + 1; pow(2; 2))"},
        {L"cos (0)", L"?", 1.0, L"cos(0 deg)"},
    });
    checkFailures({
        {L"max(2;3;4)", 9},
        {L"pow(2)", 5},
        {L"cos()", 4},
        {L"cos(1;2)", 7},
        {L"abs(;2)", 4},
        {L"random(1)", 8},
        {L"max(1;-)", 7},
    });
}

TEST(ParserTests, SemicolonStaysConsumedIfNoArgumentFollows) {
    check({
        {L"abs(2;)", L"?", 2.0, L"abs(2)"},
        {L"max(1;2;)", L"?", 2.0, L"max(1; 2)"},
        {L"abs(2;", L"?", 2.0, L"abs(2)"},
    });
    checkFailures({{L"pow(2;)", 6}});
}

TEST(ParserTests, MissingBracketAtTheEndOfAFunctionIsAccepted) {
    check({
        {L"cos(0", L"?", 1.0, L"cos(0 deg)"},
        {L"pow(10; (log(10^2))", L"?", 100.0, L"pow(10; ( log(10 ^ 2) ))"},
        {L"abs(-2", L"?", 2.0, L"abs(-2)"},
    });
    checkFailures({{L"cos(0 2", 6}, {L"cos(0))", 6}});
}

TEST(ParserTests, FunctionWithoutItsBracketIsNotTaken) {
    checkFailures({
        {L"(cos 3)", 1},
        {L"cos(", 3},
        {L"cos", -1},
        {L"cos 3", 4},
        {L"2*cos", 1},
        {L"1+cos(", 1},
    });
}

TEST(ParserTests, RandomNeedsNoArgument) {
    for (wchar_t const * const text : {L"random()", L"random(-)", L"2*random()"}) {
        Expression const expression(text);
        ASSERT_TRUE(expression) << shown(text);
        EXPECT_GE(*expression.value(), 0.0);
        EXPECT_LE(*expression.value(), 2.0);
    }
    EXPECT_EQ(Expression(L"random(-)").rebuilt(), L"random()");
}

// ---- Failures -----------------------------------------------------------------------------------

TEST(ParserTests, NothingButBlanksIsAnEmptyExpression) {
    for (wchar_t const * const text : {L"", L" ", L"\t\r\n \u00A0\u3000"})
        EXPECT_EQ(outcome(text), L"Empty Expression") << shown(text);
}

TEST(ParserTests, TextThatEndsTooEarlyTerminatesAbruptly) {
    checkFailures({{L"(", -1},
                   {L"-", -1},
                   {L")", -1},
                   {L"#", -1},
                   {L";", -1},
                   {L"/", -1},
                   {L"--", -1},
                   {L"-(", -1},
                   {L"x", -1},
                   {L".", -1},
                   {L"2e", -1}});
}

TEST(ParserTests, FailureIsReportedAtTheTokenAfterTheLastAccepted) {
    checkFailures({
        {L"1CM", 1},
        {L"2*", 1},
        {L"2+", 1},
        {L"2 *", 2},
        {L"2*-", 1},
        {L"2 # s", 2},
        {L"2 $$", 2},
        {L"  2 $$", 4},
        {L"(2+3", 1},
        {L"2+(3", 1},
        {L"((1", 2}, // the inner bracket became the current token
        {L"(2+", 1},
        {L"2)", 1},
        {L"2+3)", 3},
        {L"()", 1},
        {L"(-#", 2},
        {L"#2", -1},
        {L"x 2", 2},
        {L"1 + x", 2},
        {L"1; 2", 1},
        {L"SpeedOfLight / 2 # s", 17},
        {L"3 fl_oz", 4}, // a femtolitre, and what no form knows
        {L"3 circular_mil", 2},
        {L"45 deg 30' 30", 11},
    });
}

TEST(ParserTests, UnitBracketWhoseInsideFailsSpoilsTheTokenAfter) {
    checkFailures({
        {L"1 m / (s + 2 s)", 4},
        {L"1 ()", 2},
        {L"1 ((s + 2))", 2},
        {L"1 (m", 2},
        {L"1 (m 2)", 2},
    });
    check({{L"(1 m) / (s + 2 s)", L"?", 100.0 / 3.0, L"( 1 m ) / ( s + 2 s )"}});
}

TEST(ParserTests, PositionsCountSixteenBitCharacters) {
    checkFailures({
        {L"2 \U0001D11E", 2},
        {L"2*(1+\U0001D11E)", 1},
        {L"\U0001D11E 2", 3},
        {L"abs(\U0001D11E\U0001D11E)", 4},
        {L"1 m #\U0001D11E", 4},
    });
}

TEST(ParserTests, UnitsThatConflictDontEvaluate) {
    for (wchar_t const * const text :
         {L"1kg+1cm",         L"1kg-1cm",  L"sqrt(16 cm)",     L"exp(2 cm)",
          L"ln(1 s)",         L"log(1 s)", L"pow(16 cm; 0.5)", L"(2cm)^0.5",
          L"(2cm)^(1 s)",     L"2^(1 cm)", L"cos(1 cm)",       L"acos(1 rad)",
          L"5 cm % 2",        L"5 % 2 cm", L"max(2kg;3cm)",    L"max(2kg;3)",
          L"max(2;3kg)",      L"1+1cm",    L"cos(sqrt(4))",    L"floor(1 cm + 1 s)",
          L"sign(1 cm + 1 s)"})
        EXPECT_EQ(outcome(text), L"Units don't Evaluate") << shown(text);
    EXPECT_EQ(outcome(L"1kg+1cm", L"cm"), L"Units don't Evaluate");
    EXPECT_EQ(outcome(L"1in+1gram", L""), L"Units don't Evaluate");
    EXPECT_EQ(outcome(L"max(2kg;3l)", L""), L"Units don't Evaluate");
}

TEST(ParserTests, UnitsOfAnotherDimensionMismatch) {
    EXPECT_EQ(outcome(L"2kg", L"cm"),
              L"Units mismatch between expected (centimeter) / (1) and evaluated (kilogram) / (1)");
    EXPECT_EQ(outcome(L"2in", L"kg"),
              L"Units mismatch between expected (kilogram) / (1) and evaluated (inch) / (1)");
    EXPECT_EQ(outcome(L"2in", L""),
              L"Units mismatch between expected (1) / (1) and evaluated (inch) / (1)");
    EXPECT_EQ(outcome(L"2 m/s", L"m"), L"Units mismatch between expected (meter) / (1) and "
                                       L"evaluated (meter) / (second)");
}

// ---- Where bare numbers get their units ---------------------------------------------------------

TEST(ParserTests, BareNumbersTakeTheExpectedUnits) {
    check({
        {L"2", L"in", 5.08, L"2 in"},
        {L"2", L"?", 2.0, L"2"},
        {L"2", L"", 2.0, L"2"},
        {L"2*2", L"in", 10.16, L"( 2 * 2 ) * 1 in"},
        {L"2*2cm", L"in", 4.0, L"2 * 2 cm"},
        {L"2cm*2", L"in", 4.0, L"2 cm * 2"},
        {L"1+1.0", L"in", 5.08, L"1 in + 1.0 in"},
        {L"1in+1", L"cm", 3.54, L"1 in + 1 cm"},
        {L"1+(2+3)", L"cm", 6.0, L"1 cm + ( 2 cm + 3 cm )"},
        {L"-2", L"cm", -2.0, L"-2 cm"},
        {L"2^2", L"cm", 4.0, L"( 2 ^ 2 ) * 1 cm"},
        {L"10", L"m/s^2", 1000.0, L"10 m / s^2"},
        {L"2*(1 + 1cm)", L"cm", 4.0, L"2 * ( 1 cm + 1 cm )"},
        {L"2 cm/cm", L"in", 5.08, L"2"},
        {L"2cm*2 + 3cm/2 - 2^3 + 4%3", L"cm", -1.5,
         L"2 cm * 2 + 3 cm / 2 - ( 2 ^ 3 ) * 1 cm + ( 4 % 3 ) * 1 cm"},
        {L"2*2 + 3/2 - 2^3 + 4%3", L"cm", -1.5,
         L"( 2 * 2 ) * 1 cm + 1 1/2 cm - ( 2 ^ 3 ) * 1 cm + ( 4 % 3 ) * 1 cm"},
    });
}

TEST(ParserTests, NumbersInExponentsStayPure) {
    check({
        {L"2^(1+1)", L"cm", 4.0, L"( 2 ^ ( 1 + 1 ) ) * 1 cm"},
        {L"(2cm)^(1+1)", L"cm cm", 4.0, L"( 2 cm ) ^ ( 1 + 1 )"},
        {L"pow(2cm; 1+1)", L"cm cm", 4.0, L"pow(2 cm; 1 + 1)"},
    });
    EXPECT_EQ(outcome(L"2^(1+1cm)", L"cm"), L"Units don't Evaluate");
}

TEST(ParserTests, NumbersInAnglesTakeDegreesOrRadians) {
    check({
        {L"cos(60)", L"", 0.5, L"cos(60 deg)"},
        {L"cos(60)", L"deg", 0.008726646259971648, L"( cos(60 deg) ) * 1 deg"},
        {L"cos(2 * 30)", L"?", 0.5, L"cos(( 2 * 30 ) * 1 deg)"},
        {L"cos(40 + 20deg)", L"?", 0.5, L"cos(40 deg + 20 deg)"},
        {L"cos(max(1 rad; 60))", L"?", 0.5, L"cos(max(1 rad; 60 deg))"},
    });
    // Where the context prefers radians they are radians.
    Expression const radians(L"cos(2)", contextOf(L"rad"));
    EXPECT_EQ(radians.rebuilt(), L"( cos(2 rad) ) * 1 rad");
    EXPECT_NEAR(*radians.value(), std::cos(2.0), 1e-15);
}

TEST(ParserTests, ExpectedUnitsOfAContextOutliveIt) {
    Node * node = nullptr;
    ParseResult result;
    {
        Units::UnitContext const context(L"m / (s s)");
        node = Interface::get()->parse(L"9.81", context, result);
    }
    ASSERT_NE(node, nullptr);
    double value = 0.0;
    EXPECT_TRUE(Interface::get()->evaluate(node, value));
    EXPECT_NEAR(value, 981.0, 1e-8);
    EXPECT_EQ(Interface::get()->reconstructString(node, Units::ValueAndUnit,
                                                  Units::UnitDisplaySettings::standard()),
              L"9.81 m / s^2");
    Interface::get()->destroy(node);
}

TEST(ParserTests, RootKeepsTheExpectedUnitsAsItsDefault) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * defaultUnits;
    };
    Row const rows[] = {
        {L"2", L"in", L"(inch) / (1)"},     {L"2 cm", L"in", L"(inch) / (1)"},
        {L"2 * 2", L"in", L"(inch) / (1)"}, {L"acos(0)", L"deg", L"(degree) / (1)"},
        {L"2", L"?", L"(1) / (1)"},         {L"2 cm", L"?", L"(1) / (1)"},
    };
    for (Row const & row : rows) {
        ParseResult result;
        Node * const node = Interface::get()->parse(row.text, contextOf(row.context), result);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->defaultUnits().toString(), row.defaultUnits) << shown(row.text);
        EXPECT_EQ(node->hasDefaultUnits(), std::wstring_view(row.context) != L"?")
            << shown(row.text);
        Interface::get()->destroy(node);
    }
}

TEST(ParserTests, ParserMayBeAskedDirectly) {
    ParseResult result;
    ComplexUnit const inch(Units::UnitInch::get());
    // The expected units needn't be those of the context.
    Node * const node = Parser::get()->parse(L"2", Units::UnitContext(), &inch, result);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(result.result(), EResult::parsedOk);
    double value = 0.0;
    EXPECT_TRUE(node->evaluate(value));
    EXPECT_NEAR(value, 5.08, 1e-12);
    Interface::get()->destroy(node);
    EXPECT_EQ(Parser::get()->parse(L"2 kg", Units::UnitContext(), &inch, result), nullptr);
    EXPECT_EQ(result.result(), EResult::unitMismatch);
}

} // namespace

} // namespace Vn::Expressions
