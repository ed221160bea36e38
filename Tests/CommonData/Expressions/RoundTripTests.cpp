// What comes out can be read back.

#include <chrono>
#include <iostream>
#include <random>
#include <span>

#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::ComplexUnit;
using Units::UnitContext;
using Units::UnitDisplaySettings;

bool sameUnits(std::optional<ComplexUnit> const & a, std::optional<ComplexUnit> const & b) {
    if (!a || !b) return !a && !b;
    return a->isDimensionallyEquivalent(&*b);
}

// The laws of one text in one context.
void checkLaws(std::wstring const & text, UnitContext const & context) {
    Expression const expression(text, context);
    ParseResult const & result = expression.result();
    ASSERT_EQ(static_cast<bool>(expression), result.result() == EResult::parsedOk) << shown(text);
    ASSERT_NE(result.result(), EResult::unknownResult) << shown(text);
    // Where there is anything, a failure lies in it.
    if (result.result() == EResult::failedToParse) {
        ASSERT_LT(result.position(), Text::length16(text)) << shown(text);
    } else {
        ASSERT_EQ(result.position(), 0U) << shown(text);
    }
    if (!expression) {
        ASSERT_FALSE(expression.value()) << shown(text);
        ASSERT_EQ(expression.rebuilt(), L"") << shown(text);
        ASSERT_EQ(expression.textToStore(), text) << shown(text);
        return;
    }
    // The units were worked out, or there would be no tree.
    ASSERT_TRUE(expression.units()) << shown(text);
    std::optional<double> const value = expression.value();
    ASSERT_EQ(
        expression.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), context).empty(),
        !value)
        << shown(text);

    std::wstring const stored = expression.textToStore();
    ASSERT_FALSE(stored.empty()) << shown(text);
    Expression const again(stored, context);
    ASSERT_TRUE(again) << shown(text) << " stored as " << shown(stored);
    ASSERT_EQ(again.value(), value) << shown(text) << " stored as " << shown(stored);
    ASSERT_TRUE(sameUnits(again.units(), expression.units()))
        << shown(text) << " stored as " << shown(stored);
    // It is shown alike.
    UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
    ASSERT_EQ(again.formatted(Units::ValueAndUnit, standard, context),
              expression.formatted(Units::ValueAndUnit, standard, context))
        << shown(text) << " stored as " << shown(stored);
    // And is stored in the same way from then on.
    ASSERT_EQ(again.textToStore(), stored) << shown(text);
    ASSERT_EQ(expression.rebuiltReadsBack(), stored == expression.rebuilt()) << shown(text);
}

// ---- The worked expressions ---------------------------------------------------------------------

TEST(RoundTripTests, WorkedExpressionsRebuildToText) {
    for (WorkedExpression const & row : workedExpressions()) {
        UnitContext const context = contextOf(row.context);
        ASSERT_NO_FATAL_FAILURE(checkLaws(row.expression, context));
        Expression const expression(row.expression, context);
        if (!expression.value()) continue;
        std::wstring const rebuilt = expression.rebuilt();
        EXPECT_FALSE(rebuilt.empty()) << shown(row.expression);
        // A rebuilt text of these is read again to the same value, and rebuilds to itself.
        Expression const again(rebuilt, context);
        ASSERT_TRUE(again.value()) << shown(rebuilt);
        EXPECT_NEAR(*again.value(), *expression.value(), 1e-8) << shown(rebuilt);
        EXPECT_EQ(again.rebuilt(), rebuilt);
        EXPECT_TRUE(sameUnits(again.units(), expression.units())) << shown(rebuilt);
    }
}

TEST(RoundTripTests, WorkedDisplaysRebuildToText) {
    for (WorkedDisplay const & row : workedDisplays()) {
        UnitDisplaySettings settings = nonStandardSettings();
        if (applyControlRow(row, settings)) continue;
        UnitContext const context = contextOf(row.context);
        ASSERT_NO_FATAL_FAILURE(checkLaws(row.expression, context));
        // Also the text of another display is read back.
        Expression const expression(row.expression, context);
        std::wstring const rebuilt = expression.rebuilt(Units::ValueAndUnit, settings);
        Expression const again(rebuilt, context);
        ASSERT_TRUE(again.value()) << shown(rebuilt);
        EXPECT_NEAR(*again.value(), *expression.value(), 1e-8) << shown(rebuilt);
    }
}

// ---- Random expressions -------------------------------------------------------------------------

// Makes expressions.  Most texts have one family of units or none, so that many of them have units
// that agree; the others mix whatever there is.
class Generator {
public:
    explicit Generator(unsigned int seed) : m_random(seed) {}

    std::wstring text() {
        m_family = one(c_families);
        m_bare = false;
        return expression(3);
    }

    wchar_t const * context() {
        if (chance(50)) return L"?";
        return one({L"", L"cm", L"in", L"ft", L"kg", L"deg", L"rad", L"C", L"m / (s s)", L"mph"});
    }

private:
    using Choice = std::initializer_list<wchar_t const *>;

    static constexpr int c_everything = 0;
    static constexpr int c_nothing = 1;
    static constexpr int c_lengths = 2;
    static constexpr int c_temperatures = 3;
    static constexpr int c_families[] = {c_everything, c_nothing, c_nothing,
                                         c_lengths,    c_lengths, c_temperatures};

    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }
    bool chance(int percent) { return below(100) < percent; }
    wchar_t const * one(Choice texts) {
        return texts.begin()[below(static_cast<int>(texts.size()))];
    }
    int one(std::span<int const> numbers) {
        return numbers[static_cast<std::size_t>(below(static_cast<int>(numbers.size())))];
    }

    std::wstring blank() { return one({L"", L"", L" ", L"  ", L"\t"}); }

    std::wstring expression(int depth) {
        std::wstring text = term(depth);
        for (int more = below(3); more > 0; --more)
            text += blank() + (below(2) ? L"+" : L"-") + blank() + term(depth);
        return text;
    }

    std::wstring term(int depth) {
        std::wstring text = factor(depth);
        bool const bare = m_bare;
        // In a family only the first factor has units, so that the terms of a sum agree.
        if (m_family != c_everything) m_bare = true;
        for (int more = below(5) - 2; more > 0; --more)
            text += blank() + one({L"*", L"*", L"*", L"/", L"/", L"%"}) + blank() + factor(depth);
        if (m_bare && chance(5)) text += L"^" + digits(1);
        m_bare = bare;
        return text;
    }

    std::wstring factor(int depth) {
        if (chance(12)) return L"-" + blank() + factor(depth);
        if (depth > 0 && chance(20)) return L"(" + blank() + expression(depth - 1) + L")";
        if (depth > 0 && chance(15)) return function(depth - 1);
        if (takesUnits() && chance(8)) return units();
        if (chance(8))
            return m_family == c_everything
                       ? one({L"PI", L"E", L"Gravity", L"SpeedOfLight"}) + optionalUnits()
                       : one({L"PI", L"E"}) + optionalUnits();
        return number() + optionalUnits();
    }

    std::wstring function(int depth) {
        if (chance(20))
            return std::wstring(one({L"max", L"min"})) + L"(" + expression(depth) + L";" + blank() +
                   expression(depth) + L")";
        if (takesUnits())
            return std::wstring(one({L"floor", L"ceil", L"round", L"abs"})) + L"(" +
                   expression(depth) + L")";
        return std::wstring(one({L"acos", L"asin", L"atan", L"sqrt", L"exp", L"ln", L"log",
                                 L"floor", L"ceil", L"round", L"abs", L"sign", L"cos", L"tanh"})) +
               L"(" + number() + (chance(95) ? L")" : L"");
    }

    std::wstring digits(int most) {
        std::wstring text;
        for (int count = 1 + below(most); count > 0; --count)
            text += static_cast<wchar_t>(L'0' + below(10));
        return text;
    }

    std::wstring number() {
        bool const lengths = takesUnits() && (m_family == c_lengths || m_family == c_everything);
        switch (below(lengths ? 8 : 6)) {
        case 0:
            return digits(3) + one({L".", L","}) + digits(4);
        case 1:
            return one({L".", L","}) + digits(3);
        case 2:
            return digits(2) + L"." + digits(3) + one({L"e", L"E", L"E+", L"E-"}) + digits(2);
        case 3:
            return digits(2) + L" " + digits(2) + L"/" + one({L"2", L"8", L"64", L"128"});
        case 4:
            return digits(2) + L"/" + one({L"2", L"4", L"16", L"3"});
        case 5:
            return digits(3);
        case 6:
            return digits(2) + L"' " + digits(2) + L"\"";
        default:
            return digits(2) + L"'" + one({L"", L"-"}) + digits(1) + L" 3/4\"";
        }
    }

    bool takesUnits() const { return m_family != c_nothing && !m_bare; }

    std::wstring optionalUnits() {
        return takesUnits() && chance(80) ? blank() + units() : std::wstring();
    }

    std::wstring units() {
        if (m_family == c_lengths)
            return one({L"cm", L"m", L"km", L"mm", L"in", L"ft", L"yd", L"mi", L"IN", L"cm m/m",
                        L"(ft)", L"in^1", L"micron"});
        if (m_family == c_temperatures) return one({L"C", L"F", L"K", L"C/s s", L"f"});
        std::wstring text = unit();
        for (int more = below(6) - 3; more > 0; --more) text += one({L" ", L"*", L" / "}) + unit();
        return text;
    }

    std::wstring unit() {
        if (chance(5)) return L"(" + units() + L")";
        std::wstring const name =
            one({L"cm",  L"m",  L"in",  L"ft",  L"mi",  L"kg",  L"gram",  L"s", L"hr", L"K",
                 L"C",   L"F",  L"deg", L"rad", L"mph", L"N",   L"kW",    L"J", L"Pa", L"l",
                 L"gal", L"Hz", L"rpm", L"V",   L"A",   L"ohm", L"lumen", L"$", L"\"", L"deg 30'"});
        return chance(10) ? name + L"^" + one({L"2", L"3", L"0", L"0.5"}) : name;
    }

    std::mt19937 m_random;
    int m_family = c_everything;
    bool m_bare = false; // no units for now
};

unsigned int newSeed() {
    return static_cast<unsigned int>(std::chrono::system_clock::now().time_since_epoch().count());
}

void checkRandomExpressions(unsigned int seed) {
    std::cout << "seed " << seed << '\n';
    SCOPED_TRACE("seed " + std::to_string(seed));
    Generator generator(seed);
    int parsed = 0;
    int evaluated = 0;
    for (int i = 0; i < 4000; ++i) {
        std::wstring const text = generator.text();
        UnitContext const context = contextOf(generator.context());
        ASSERT_NO_FATAL_FAILURE(checkLaws(text, context));
        Expression const expression(text, context);
        if (!expression) continue;
        ++parsed;
        if (!expression.value()) continue;
        ++evaluated;
        // It rebuilds to text: only units that cancel, alone, without a number before them, write
        // nothing.
        ASSERT_TRUE(!expression.rebuilt().empty() || text.find_first_of(L"0123456789.,-(") != 0)
            << shown(text);
    }
    // A generator of failures alone would show nothing.
    std::cout << parsed << " parsed, " << evaluated << " evaluated\n";
    EXPECT_GE(parsed, 1000);
    EXPECT_GE(evaluated, 500);
}

TEST(RoundTripTests, RandomExpressionsOfAFixedSeed) { checkRandomExpressions(20240607); }

TEST(RoundTripTests, RandomExpressionsOfANewSeed) { checkRandomExpressions(newSeed()); }

// ---- All short texts ----------------------------------------------------------------------------

// Every text of up to `length` pieces, in each of the contexts.
void checkAllTexts(std::vector<std::wstring> const & pieces, std::size_t length,
                   std::vector<std::wstring> const & contexts, std::size_t & texts,
                   std::size_t & trees) {
    std::vector<UnitContext> read;
    for (std::wstring const & context : contexts) read.push_back(contextOf(context));
    std::vector<std::size_t> chosen;
    std::wstring text;
    for (;;) {
        for (UnitContext const & context : read) {
            ASSERT_NO_FATAL_FAILURE(checkLaws(text, context));
            ++texts;
            trees += static_cast<bool>(Expression(text, context));
        }
        // The next: one piece longer, or another last piece.
        if (chosen.size() < length) {
            chosen.push_back(0);
        } else {
            while (!chosen.empty() && ++chosen.back() == pieces.size()) chosen.pop_back();
            if (chosen.empty()) return;
        }
        text.clear();
        for (std::size_t const piece : chosen) text += pieces[piece];
    }
}

TEST(RoundTripTests, AllTextsOfUpToFourPieces) {
    std::size_t texts = 0;
    std::size_t trees = 0;
    checkAllTexts({L"1", L"2", L" ", L"cm", L"in", L"+", L"-", L"*", L"/", L"^", L"(", L")", L";",
                   L"\"", L"'", L"."},
                  4, {L"?", L"cm"}, texts, trees);
    EXPECT_EQ(texts, 2U * (1 + 16 + 256 + 4096 + 65536));
    EXPECT_GT(trees, 2000U);
}

TEST(RoundTripTests, AllTextsOfUpToFivePieces) {
    std::size_t texts = 0;
    std::size_t trees = 0;
    checkAllTexts(
        {L"1", L"2", L"cm", L"in", L"+", L"-", L"*", L"/", L"^", L"(", L")", L";", L"\"", L"'"}, 5,
        {L"in"}, texts, trees);
    EXPECT_EQ(texts, 1U + 14 + 196 + 2744 + 38416 + 537824);
    EXPECT_GT(trees, 3000U);
}

TEST(RoundTripTests, AllTextsOfAnglesFunctionsAndTemperatures) {
    std::size_t texts = 0;
    std::size_t trees = 0;
    checkAllTexts(
        {L"1", L" ", L"deg", L"'", L"\"", L"C", L"-", L"^", L"PI", L"cos(", L"max(", L")", L";"}, 4,
        {L"?", L"C", L"deg"}, texts, trees);
    EXPECT_EQ(texts, 3U * (1 + 13 + 169 + 2197 + 28561));
    EXPECT_GT(trees, 1000U);
}

} // namespace

} // namespace Vn::Expressions
