// What a caller may pass in may be huge or hostile.

#include <limits>

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Settings = Units::UnitDisplaySettings;

// Parses, evaluates, formats and rebuilds; the tree ends with the handle.
struct Answer {
    std::wstring outcome;
    std::optional<double> value;
    std::wstring units;
    std::wstring formatted;
    std::wstring rebuilt;
};

Answer answer(std::wstring text, std::wstring_view context = L"?") {
    Expression const expression(std::move(text), contextOf(context));
    Answer all;
    all.outcome = expression.result().toString();
    all.value = expression.value();
    if (std::optional<Units::ComplexUnit> const units = expression.units())
        all.units = units->toString();
    all.formatted =
        expression.formatted(Units::ValueAndUnit, Settings::standard(), expression.context());
    all.rebuilt = expression.rebuilt();
    return all;
}

Answer onSmallStack(std::wstring text, std::wstring_view context = L"?") {
    Answer all;
    Testing::onSmallStack([&] { all = answer(std::move(text), context); });
    return all;
}

// ---- Length -------------------------------------------------------------------------------------

TEST(RobustnessTests, SumOfAMillionTerms) {
    std::wstring const text = L"1" + repeated(L"+1", 999'999);
    Answer const all = onSmallStack(text);
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 1e6);
    EXPECT_EQ(all.formatted, L"1.000E+06");
    EXPECT_EQ(all.rebuilt, L"1" + repeated(L" + 1", 999'999));
}

TEST(RobustnessTests, SumOfAMillionLengths) {
    std::wstring const text = L"1cm" + repeated(L"+1cm", 999'999);
    Answer const all = onSmallStack(text, L"in");
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 1e6);
    EXPECT_EQ(all.units, L"(centimeter) / (1)");
    EXPECT_EQ(all.formatted, L"3.937E+05 in");
    EXPECT_EQ(all.rebuilt, L"1 cm" + repeated(L" + 1 cm", 999'999));
}

TEST(RobustnessTests, SumOfAMillionBareNumbersTakesUnitsAtItsEnd) {
    // Only the last term has units; the whole chain before it adopts them.
    std::wstring const text = L"1" + repeated(L"+1", 999'998) + L"+1cm";
    Answer const all = onSmallStack(text, L"in");
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 999'999 * 2.54 + 1.0);
    EXPECT_EQ(all.rebuilt, L"1 in" + repeated(L" + 1 in", 999'998) + L" + 1 cm");
}

TEST(RobustnessTests, ProductOfManyBareNumbers) {
    std::wstring const text = L"1" + repeated(L"*1", 99'999);
    Answer const all = onSmallStack(text, L"cm");
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 1.0);
    EXPECT_EQ(all.formatted, L"1.00 cm");
    EXPECT_EQ(all.rebuilt, L"( 1" + repeated(L" * 1", 99'999) + L" ) * 1 cm");
}

TEST(RobustnessTests, ProductOfManyLengthsIsRefusedAt4097) {
    Answer all = answer(L"1cm" + repeated(L"*1cm", 4095));
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.formatted, L"1.00 cm^4096");
    EXPECT_EQ(answer(L"1cm" + repeated(L"*1cm", 4096)).outcome, L"Units don't Evaluate");
    EXPECT_EQ(onSmallStack(L"1cm" + repeated(L"*1cm", 99'999)).outcome, L"Units don't Evaluate");
    EXPECT_EQ(onSmallStack(L"1cm" + repeated(L"/1cm", 99'999)).outcome, L"Units don't Evaluate");
    // Quotients that cancel count too.
    EXPECT_EQ(answer(L"1cm" + repeated(L"/1cm", 4095)).outcome, L"Success!");
    EXPECT_EQ(answer(L"1cm" + repeated(L"/1cm", 4096)).outcome, L"Units don't Evaluate");
}

TEST(RobustnessTests, ChainsOfEveryOperator) {
    struct Row {
        wchar_t const * first;
        wchar_t const * piece;
        double value;
    };
    constexpr Row c_rows[] = {
        {L"1", L"-1", -199'999.0}, {L"1", L"/1", 1.0},     {L"1", L"%7", 1.0},
        {L"1", L"^1", 1.0},        {L"0", L"+2*3", 1.2e6}, {L"0", L"+(1-1)", 0.0},
    };
    for (Row const & row : c_rows) {
        Answer const all = onSmallStack(row.first + repeated(row.piece, 200'000));
        EXPECT_EQ(all.outcome, L"Success!") << shown(row.piece);
        EXPECT_EQ(all.value, row.value) << shown(row.piece);
        EXPECT_GT(all.rebuilt.size(), 200'000U) << shown(row.piece);
    }
}

TEST(RobustnessTests, ManyArgumentsAreCounted) {
    // The count is wrong, whatever it is; the list is read to its end.
    std::size_t const many = 200'000;
    EXPECT_EQ(onSmallStack(L"max(1" + repeated(L";1", many) + L")").outcome,
              L"Parse error at character " + std::to_wstring(5 + 2 * many));
}

TEST(RobustnessTests, ManyUnitsStandTogether) {
    EXPECT_EQ(answer(L"1 " + repeated(L"m ", 4096)).outcome, L"Success!");
    // The first name that would be one factor too many isn't taken.
    EXPECT_EQ(answer(L"1 " + repeated(L"m ", 4097)).outcome,
              L"Parse error at character " + std::to_wstring(2 + 2 * 4096));
    EXPECT_EQ(onSmallStack(L"1 " + repeated(L"m ", 1'000'000)).outcome,
              L"Parse error at character " + std::to_wstring(2 + 2 * 4096));
    EXPECT_EQ(onSmallStack(L"1 " + repeated(L"m/s ", 1'000'000)).outcome,
              L"Parse error at character " + std::to_wstring(2 + 4 * 2048));
}

TEST(RobustnessTests, LongName) {
    std::size_t const size = 10'000'000;
    EXPECT_EQ(answer(L"1 " + std::wstring(size, L'x')).outcome, L"Parse error at character 2");
    EXPECT_EQ(answer(std::wstring(size, L'x') + L" 1").outcome,
              L"Parse error at character " + std::to_wstring(size + 1));
    // A name whose tail is a unit.
    EXPECT_EQ(answer(L"1 " + std::wstring(size, L'm')).outcome, L"Parse error at character 2");
    EXPECT_EQ(answer(L"1 " + repeated(L"\U0001D11E", size / 4) + L" 2").outcome,
              L"Parse error at character 2");
    EXPECT_EQ(answer(std::wstring(size, L'\u4E2D') + L" 1").outcome,
              L"Parse error at character " + std::to_wstring(size + 1));
}

TEST(RobustnessTests, LongNumber) {
    std::size_t const size = 10'000'000;
    double const largest = std::numeric_limits<double>::max();
    Answer all = answer(std::wstring(size, L'9'));
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, largest);
    all = answer(L"0." + std::wstring(size, L'0') + L"1");
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 0.0);
    EXPECT_EQ(all.rebuilt.size(), 511U);
    EXPECT_EQ(answer(L"1E" + std::wstring(size, L'9')).value, largest);
    EXPECT_EQ(answer(L"1E-" + std::wstring(size, L'9')).value, 0.0);
    EXPECT_EQ(answer(std::wstring(size, L'0') + L"7").value, 7.0);
    EXPECT_EQ(answer(std::wstring(size, L'0') + L"1 1/" + std::wstring(size, L'0') + L"2").value,
              1.5);
}

TEST(RobustnessTests, ManyBlanks) {
    std::size_t const size = 10'000'000;
    std::wstring const blanks(size, L' ');
    EXPECT_EQ(answer(blanks).outcome, L"Empty Expression");
    EXPECT_EQ(answer(blanks + L"2").value, 2.0);
    EXPECT_EQ(answer(L"2" + blanks + L"cm").value, 2.0);
    EXPECT_EQ(answer(L"1" + blanks + L"1/2").value, 1.5);
    EXPECT_EQ(answer(L"2'" + blanks + L"6\"").value, 30.48 * 2.5);
    EXPECT_EQ(answer(L"45 deg" + blanks + L"30'").outcome, L"Success!");
    EXPECT_EQ(answer(blanks + L"#").outcome, L"Abrupt Termination");
    EXPECT_EQ(answer(blanks + L"2 $$").outcome,
              L"Parse error at character " + std::to_wstring(size + 2));
}

// Counts how often it is asked, and takes nothing.
class TokenizerCounting : public Tokenizer {
public:
    TokenizerCounting() : Tokenizer(FirstDigit | FirstSeparator | FirstOther) {}

    mutable std::size_t m_asked = 0;

private:
    Reading onRead(std::wstring_view, std::size_t) const override {
        ++m_asked;
        return {};
    }
};

TEST(RobustnessTests, EachPlaceIsReadOnce) {
    struct Row {
        std::wstring text;
        std::size_t places; // with a number, a name or nothing known
    };
    Row const rows[] = {
        {L"1" + repeated(L"+1", 999), 1000},
        {L"1cm" + repeated(L"+1cm", 999), 2000},
        {repeated(L"(", 500) + L"1" + repeated(L")", 500), 1},
        // Where a rule gives back what it read, nothing is read anew.
        {L"2 " + repeated(L"(m ", 500), 501},
        {L"2 m" + repeated(L"*m", 500) + L"*2", 503},
        {L"2 " + repeated(L"m/(s*", 200) + L"#", 402},
    };
    for (Row const & row : rows) {
        TokenizerCounting const counting;
        Expression const expression(row.text);
        EXPECT_LE(counting.m_asked, row.places) << shown(row.text);
        EXPECT_GE(counting.m_asked * 2, row.places) << shown(row.text);
    }
}

// A tokenizer that looked far ahead from every number would look at everything again and again.
TEST(RobustnessTests, FormsThatFailLateCostNoSecondLook) {
    std::size_t const many = 20'000;
    std::wstring const blanks(many, L' ');
    for (std::wstring const & piece :
         {std::wstring(L"1 "), std::wstring(L"1'"), std::wstring(L"1/"), std::wstring(L"1 deg "),
          std::wstring(L"1.")})
        EXPECT_NE(answer(repeated(piece, many) + blanks).outcome, L"Success!") << shown(piece);
}

// ---- Depth --------------------------------------------------------------------------------------

// `open` so many times, `inside`, and `close` as many times.
std::wstring nested(std::wstring_view open, std::size_t times, std::wstring_view inside,
                    std::wstring_view close) {
    return repeated(open, times) + std::wstring(inside) + repeated(close, times);
}

struct Nesting {
    wchar_t const * open;
    wchar_t const * inside;
    wchar_t const * close;
    std::size_t levels;  // that one `open` goes down
    std::size_t deepest; // where in `open` the level that is one too many begins
};

constexpr Nesting c_nestings[] = {
    {L"(", L"1", L")", 1, 0},      {L"abs(", L"1", L")", 1, 0},   {L"-", L"1", L"", 1, 0},
    {L"-(", L"1", L")", 2, 0},     {L"-(-", L"1", L")", 3, 1}, // 333 times three levels are 999
    {L"1+1*(", L"1", L")", 1, 4},  {L"1+(", L"1", L")", 1, 2},    {L"(1+", L"1", L")", 1, 0},
    {L"max(1;", L"1", L")", 1, 0}, {L"pow(", L"2", L";1)", 1, 0}, {L"1^(", L"1", L")", 1, 2},
};

TEST(RobustnessTests, AThousandLevelsWorkOnASmallStack) {
    for (Nesting const & nesting : c_nestings) {
        std::size_t const times = 1000 / nesting.levels;
        std::wstring const text = nested(nesting.open, times, nesting.inside, nesting.close);
        Answer const all = onSmallStack(text);
        EXPECT_EQ(all.outcome, L"Success!") << shown(nesting.open);
        EXPECT_TRUE(all.value) << shown(nesting.open);
        EXPECT_NE(all.formatted, L"") << shown(nesting.open);
        // What was rebuilt is as deep, and reads back.
        Answer const again = onSmallStack(all.rebuilt);
        EXPECT_EQ(again.outcome, L"Success!") << shown(nesting.open);
        EXPECT_EQ(again.value, all.value) << shown(nesting.open);
        EXPECT_EQ(again.rebuilt, all.rebuilt) << shown(nesting.open);
    }
}

// A cosine takes no cosine, whose result has no units and can't take any.
TEST(RobustnessTests, AThousandFunctionsWhoseUnitsConflict) {
    EXPECT_EQ(onSmallStack(nested(L"cos(", 1000, L"1", L")")).outcome, L"Units don't Evaluate");
    EXPECT_EQ(onSmallStack(nested(L"cos(", 1001, L"1", L")")).outcome,
              L"Parse error at character 4000");
    EXPECT_EQ(onSmallStack(nested(L"cos(acos(", 500, L"1", L"))")).outcome, L"Success!");
    EXPECT_EQ(onSmallStack(nested(L"cos(acos(", 501, L"1", L"))")).outcome,
              L"Parse error at character 4500");
}

TEST(RobustnessTests, OneLevelMoreFailsAtItsToken) {
    for (Nesting const & nesting : c_nestings) {
        std::size_t const times = 1000 / nesting.levels;
        std::wstring const text = nested(nesting.open, times + 1, nesting.inside, nesting.close);
        std::size_t const at = times * std::wstring_view(nesting.open).size() + nesting.deepest;
        EXPECT_EQ(onSmallStack(text).outcome, L"Parse error at character " + std::to_wstring(at))
            << shown(nesting.open);
    }
}

TEST(RobustnessTests, MuchDeeperFailsAtTheSameToken) {
    EXPECT_EQ(onSmallStack(repeated(L"(", 1'000'000)).outcome, L"Parse error at character 1000");
    EXPECT_EQ(onSmallStack(repeated(L"-", 1'000'000)).outcome, L"Parse error at character 1000");
    EXPECT_EQ(onSmallStack(repeated(L"cos(", 1'000'000)).outcome, L"Parse error at character 4000");
    EXPECT_EQ(onSmallStack(repeated(L"1+(", 1'000'000)).outcome, L"Parse error at character 3002");
    EXPECT_EQ(onSmallStack(L"2 " + repeated(L"(", 1'000'000)).outcome,
              L"Parse error at character 1002");
    EXPECT_EQ(onSmallStack(repeated(L"(", 500'000) + L"1" + repeated(L")", 500'000)).outcome,
              L"Parse error at character 1000");
}

TEST(RobustnessTests, LevelsAreThoseThatAreOpen) {
    // Brackets beside one another don't nest.
    std::wstring const deep = nested(L"(", 1000, L"1", L")");
    Answer const all = onSmallStack(deep + L"+" + deep + L"+-" + nested(L"(", 999, L"1", L")"));
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 1.0);
}

TEST(RobustnessTests, BracketsOfUnitsNestAsDeep) {
    Answer const all = onSmallStack(L"2 " + nested(L"(", 1000, L"m", L")"));
    EXPECT_EQ(all.outcome, L"Success!");
    EXPECT_EQ(all.value, 200.0);
    EXPECT_EQ(all.rebuilt, L"2 m");
    EXPECT_EQ(onSmallStack(L"2 " + nested(L"(", 1001, L"m", L")")).outcome,
              L"Parse error at character 1002");
    EXPECT_EQ(onSmallStack(nested(L"(", 500, L"2 " + nested(L"(", 500, L"m", L")"), L")")).outcome,
              L"Success!");
    EXPECT_EQ(onSmallStack(nested(L"(", 501, L"2 " + nested(L"(", 500, L"m", L")"), L")")).outcome,
              L"Parse error at character 1002");
    EXPECT_EQ(onSmallStack(L"2 m / " + nested(L"(s * ", 1000, L"s", L")")).outcome, L"Success!");
}

// A bracket that isn't closed makes the rules give back what they read, at every level of it.
TEST(RobustnessTests, BracketsThatAreNotClosedCostNoSecondLook) {
    EXPECT_EQ(onSmallStack(L"2 " + repeated(L"(", 1000) + L"m").outcome,
              L"Parse error at character 2");
    EXPECT_EQ(onSmallStack(L"2 " + repeated(L"(m ", 1000) + repeated(L")", 999)).outcome,
              L"Parse error at character 2");
    EXPECT_EQ(onSmallStack(repeated(L"(1+", 1000) + L"1").outcome.substr(0, 14), L"Parse error at");
}

// ---- Powers of units ----------------------------------------------------------------------------

TEST(RobustnessTests, GreatPowersOfUnitsAreRefused) {
    EXPECT_EQ(answer(L"2 cm^1000000000").outcome, L"Parse error at character 4");
    EXPECT_EQ(answer(L"(2cm)^1000000000").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"(2cm)^-1000000000").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"pow(2cm;1E300)").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"(2cm)^4096").outcome, L"Success!");
    EXPECT_EQ(answer(L"(2cm)^4097").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"((2cm)^64)^64").outcome, L"Success!");
    EXPECT_EQ(answer(L"((2cm)^64)^65").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"2 cm^4096 * 1 s").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"2 cm^4096 / 1 s").outcome, L"Units don't Evaluate");
    EXPECT_EQ(answer(L"2^1000000000").outcome, L"Success!");
    EXPECT_FALSE(answer(L"2^1000000000").value);
}

TEST(RobustnessTests, ManyTermsOfOneGreatUnit) {
    std::size_t const more = 1'999;
    EXPECT_EQ(answer(L"2 m^4096" + repeated(L"+2 m^4096", more)).outcome, L"Success!");
    EXPECT_EQ(answer(L"(2 m)^4096" + repeated(L"+(2 m)^4096", more)).outcome, L"Success!");
    std::wstring const product = L"(1m" + repeated(L"*1m", 4095) + L")";
    EXPECT_EQ(answer(product + repeated(L"+" + product, 4)).outcome, L"Success!");
}

// The lists of a product grow with each of its steps, and what one text may make of that is
// bounded.
TEST(RobustnessTests, TreeOfTooManyDifferentUnitsIsRefused) {
    auto const product = [](std::wstring const & unit) {
        return L"sign(1" + unit + repeated(L"*1" + unit, 4095) + L")";
    };
    std::wstring text = product(L"m");
    EXPECT_EQ(onSmallStack(text).outcome, L"Success!");
    for (wchar_t const * const unit : {L"s", L"kg", L"A", L"K", L"J", L"N"})
        text += L"+" + product(unit);
    EXPECT_EQ(onSmallStack(text).outcome, L"Units don't Evaluate");
    // So it is for units after numbers, each with a list of its own.
    text = L"1";
    for (int length = 1; length <= 4096; ++length)
        for (wchar_t const * const unit : {L"m", L"s", L"kg"})
            text += L"+sign(1 " + std::wstring(unit) + L"^" + std::to_wstring(length) + L")";
    EXPECT_EQ(onSmallStack(text).outcome, L"Units don't Evaluate");
}

// ---- Every character ----------------------------------------------------------------------------

// The tokens of a text lie inside it, in order, with nothing but blanks between them.
void checkCover(std::wstring_view text) {
    TokenList list;
    TokenizerRegistry::get()->tokenize(text, list);
    auto const size = static_cast<unsigned int>(Text::length16(text));
    unsigned int after = 0;
    for (Token const * token = list.first()->next; token; token = token->next) {
        ASSERT_LE(token->start, token->end) << shown(text);
        ASSERT_LE(token->end, size) << shown(text);
        // A name that a mark stands for may lie on the last character of its number.
        ASSERT_GE(token->start + 1, after) << shown(text);
        ASSERT_TRUE(token->end > after || token->kind == TK_END || token->end == token->start + 1)
            << shown(text);
        after = token->end;
    }
    TokenKind const last = list.last()->kind;
    ASSERT_TRUE(last == TK_END || last == TK_UNKNOWN) << shown(text);
    ASSERT_EQ(list.last()->end, size) << shown(text);
}

TEST(RobustnessTests, EveryCharacterAloneAndBetweenDigits) {
    Settings const & standard = Settings::standard();
    for (unsigned int c = 0; c <= 0xFFFF; ++c) {
        std::wstring const alone(1, static_cast<wchar_t>(c));
        for (std::wstring const & text : {alone, L"1" + alone + L"2"}) {
            ASSERT_NO_FATAL_FAILURE(checkCover(text)) << c;
            Expression const expression(text);
            ParseResult const & result = expression.result();
            ASSERT_EQ(static_cast<bool>(expression), result.result() == EResult::parsedOk) << c;
            ASSERT_LE(result.position(), text.size()) << c;
            expression.formatted(Units::ValueAndUnit, standard, expression.context());
            Expression const again(expression.textToStore());
            ASSERT_EQ(again.value(), expression.value()) << c;
        }
    }
}

TEST(RobustnessTests, CharactersAboveTheFirstPlane) {
    for (std::wstring const character :
         {L"\U00010000", L"\U0001D11E", L"\U0001F600", L"\U000E0001", L"\U0010FFFF"}) {
        for (std::wstring const & text : {character, L"1" + character + L"2"})
            ASSERT_NO_FATAL_FAILURE(checkCover(text));
        EXPECT_EQ(outcome(character), L"Abrupt Termination");
        EXPECT_EQ(outcome(L"1" + character + L"2"), L"Parse error at character 1");
        EXPECT_EQ(outcome(L"1+" + character + L"2"), L"Parse error at character 1");
        EXPECT_EQ(outcome(character + L" 2"), L"Parse error at character 3");
    }
}

TEST(RobustnessTests, HalvesOfSurrogatePairs) {
    std::wstring const high(1, static_cast<wchar_t>(0xD834));
    std::wstring const low(1, static_cast<wchar_t>(0xDD1E));
    for (std::wstring const & halves : {high, low, low + high, high + high}) {
        for (std::wstring const & text : {halves, L"1" + halves + L"2"})
            ASSERT_NO_FATAL_FAILURE(checkCover(text));
        EXPECT_EQ(outcome(halves), L"Abrupt Termination");
        EXPECT_EQ(outcome(L"1" + halves + L"2"), L"Parse error at character 1");
        EXPECT_EQ(outcome(halves + L" 2"),
                  L"Parse error at character " + std::to_wstring(halves.size() + 1));
    }
}

// ---- Odd settings -------------------------------------------------------------------------------

TEST(RobustnessTests, OddSettingsFormatToSomething) {
    double const infinity = std::numeric_limits<double>::infinity();
    double const nan = std::numeric_limits<double>::quiet_NaN();
    short const precisions[] = {-32768, -5, 0, 1, 3, 19, 20, 508, 511, 512, 1100, 32767};
    double const thresholds[] = {nan, infinity, -infinity, 0.0, 1e308};
    double const values[] = {0.0,
                             -0.0,
                             1.0,
                             -1.5,
                             0.1,
                             1e308,
                             -1e308,
                             5e-324,
                             -5e-324,
                             2.2250738585072014e-308,
                             2147483645.9999,
                             59.9999999,
                             infinity,
                             -infinity,
                             nan};
    Units::Unit const * const units[] = {Units::UnitInch::get(), Units::UnitFoot::get(),
                                         Units::UnitDegree::get(), Units::UnitMeter::get(1e-18),
                                         &Units::ComplexUnit::none()};
    std::size_t formatted = 0;
    for (short const precision : precisions) {
        for (double const threshold : thresholds) {
            for (int form = 0; form < 12; ++form) {
                Settings settings = Settings::standard();
                settings.generalPrecision(precision);
                settings.angularPrecision(precision);
                settings.scientificPrecision(precision);
                // Also more decimals at least than there are.
                settings.minimumPrecision(form % 2 ? short{32767} : short{-32768});
                settings.hideTrailingZeroes(form % 4 < 2);
                settings.useScientificNotationAboveThreshold(threshold);
                settings.useScientificNotationBelowThreshold(threshold);
                settings.lengthDisplay(static_cast<Units::ELengthDisplay>(form % 3));
                settings.degreeDisplay(static_cast<Units::EDegreeDisplay>(form / 6));
                settings.specifiedByNode(form % 5 == 0);
                for (double const value : values) {
                    for (Units::Unit const * const unit : units) {
                        std::wstring const text =
                            unit->reconstructString(value, Units::ValueAndUnit, settings);
                        ASSERT_FALSE(text.empty());
                        ASSERT_LT(text.size(), 1200U); // two fields and a unit
                        ++formatted;
                    }
                }
            }
        }
    }
    EXPECT_EQ(formatted, 12U * 5U * 12U * 15U * 5U);
}

TEST(RobustnessTests, EnumerationsOutOfRangeFormatToSomething) {
    Settings settings = Settings::standard();
    settings.lengthDisplay(static_cast<Units::ELengthDisplay>(77));
    settings.degreeDisplay(static_cast<Units::EDegreeDisplay>(-1));
    EXPECT_EQ(Units::UnitInch::get()->reconstructString(6.35, Units::ValueAndUnit, settings),
              L"2.50 in");
}

TEST(RobustnessTests, ValueBeyondTheRangeOfItsUnitIsAWord) {
    // A tiny unit makes a finite value infinite on the way out.
    Expression const expression(L"1E300 m");
    EXPECT_EQ(expression.formatted(Units::ValueAndUnit, Settings::standard(), contextOf(L"am")),
              L"INF am");
    // And a great one on the way in.
    Expression const great(L"1E308 km");
    EXPECT_FALSE(great.value());
    EXPECT_EQ(great.rebuilt(), L"INF km");
    Expression const expected(L"1E308", contextOf(L"km"));
    EXPECT_TRUE(expected);
    EXPECT_FALSE(expected.value());
    EXPECT_EQ(expected.formatted(), L"");
    EXPECT_EQ(expected.textToStore(), L"1E308");
}

TEST(RobustnessTests, ExtremeValuesInEveryForm) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * formatted;
    };
    constexpr Row c_rows[] = {
        {L"1E308 cm", L"?", L"1.000E+308 cm"}, {L"-1E308 cm", L"?", L"-1.000E+308 cm"},
        {L"1E-308 cm", L"?", L"0.00 cm"},      {L"5E-324", L"?", L"0.00"},
        {L"-5E-324", L"?", L"0.00"},           {L"1E309", L"?", L"1.798E+308"},
        {L"1E308 + 1E308", L"?", L""},         {L"round(3E9)", L"?", L"2.147E+09"},
        {L"round(-3E9)", L"?", L"-2.147E+09"},
    };
    for (Row const & row : c_rows)
        EXPECT_EQ(answer(row.text, row.context).formatted, row.formatted) << shown(row.text);
    auto const fractions = [](Settings & settings) {
        settings.lengthDisplay(Units::LengthFractional);
    };
    Expression const huge(L"1E308 in");
    std::wstring const text =
        huge.formatted(Units::ValueAndUnit, standardBut(fractions), huge.context());
    EXPECT_EQ(text, L""); // 2.54 times that isn't finite
    Expression const large(L"1E300 in");
    std::wstring const digits =
        large.formatted(Units::ValueAndUnit, standardBut(fractions), large.context());
    EXPECT_EQ(digits.size(), 302U); // 301 digits and the mark
    EXPECT_EQ(digits.back(), L'"');
}

} // namespace

} // namespace Vn::Expressions
