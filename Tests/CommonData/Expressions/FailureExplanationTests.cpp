#include "Server/CommonData/Expressions/FailureExplanation.h"

#include <cstdlib>
#include <iterator>
#include <random>
#include <set>

#include "Server/CommonData/Expressions/Vocabulary.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Reason = EParseFailure;

struct Row {
    wchar_t const * text;
    wchar_t const * context; // "?" expects nothing
    Reason reason;
    unsigned int start;
    unsigned int end;
    wchar_t const * message;
};

constexpr wchar_t c_power[] = L"Units don't Evaluate: an exponent has no units, and it is a whole "
                              L"number if the base has units";

Row const c_rows[] = {
    {L"", L"?", Reason::emptyText, 0, 0, L"Empty Expression: there is nothing to evaluate"},
    {L" \t", L"cm", Reason::emptyText, 0, 0, L"Empty Expression: there is nothing to evaluate"},
    {L"-", L"?", Reason::textEndsTooSoon, 1, 1,
     L"Abrupt Termination: the text ends where more is needed"},
    {L"2 + - ", L"?", Reason::textEndsTooSoon, 6, 6,
     L"Parse error at character 2: the text ends where more is needed"},

    {L"1CM", L"?", Reason::unknownName, 1, 3,
     L"Parse error at character 1: \"CM\" isn't a unit, a function or a constant"},
    {L"CM", L"?", Reason::unknownName, 0, 2,
     L"Abrupt Termination: \"CM\" isn't a unit, a function or a constant"},
    {L"2 + me 5", L"?", Reason::unknownName, 4, 6,
     L"Parse error at character 2: \"me\" isn't a unit, a function or a constant"},
    {L"x(2)", L"?", Reason::unknownName, 0, 1,
     L"Parse error at character 1: \"x\" isn't a unit, a function or a constant"},
    {L"1 + (2 + (3 * metre))", L"?", Reason::unknownName, 14, 19,
     L"Parse error at character 2: \"metre\" isn't a unit, a function or a constant"},
    {L"\U0001F4CF + 2", L"?", Reason::unknownName, 0, 2,
     L"Parse error at character 3: \"\U0001F4CF\" isn't a unit, a function or a constant"},
    {L"(2) qm", L"?", Reason::unknownName, 4, 6,
     L"Parse error at character 4: \"qm\" isn't a unit, a function or a constant"},

    {L"2 & 3", L"?", Reason::unusableCharacter, 2, 3,
     L"Parse error at character 2: \"&\" has no meaning in an expression"},
    {L"2 = 2", L"?", Reason::unusableCharacter, 2, 3,
     L"Parse error at character 2: \"=\" has no meaning in an expression"},
    {L"{2}", L"?", Reason::unusableCharacter, 0, 1,
     L"Abrupt Termination: \"{\" has no meaning in an expression"},
    {L"1 + .", L"?", Reason::unusableCharacter, 4, 5,
     L"Parse error at character 2: \".\" has no meaning in an expression"},
    {L"3 * 2.5E cm", L"?", Reason::numberIncomplete, 4, 8,
     L"Parse error at character 2: a number isn't complete"},

    {L"2+", L"?", Reason::operandMissing, 1, 2,
     L"Parse error at character 1: nothing that can be used follows \"+\""},
    {L"(1 + * 2)", L"?", Reason::operandMissing, 3, 4,
     L"Parse error at character 1: nothing that can be used follows \"+\""},
    {L"cos(-)", L"?", Reason::operandMissing, 4, 5,
     L"Parse error at character 5: nothing that can be used follows \"-\""},
    {L"* 2", L"?", Reason::leftOperandMissing, 0, 1,
     L"Parse error at character 2: something is missing in front of \"*\""},
    {L"max(;1)", L"?", Reason::leftOperandMissing, 4, 5,
     L"Parse error at character 4: something is missing in front of \";\""},
    {L"3 5", L"?", Reason::operatorMissing, 2, 3,
     L"Parse error at character 2: an operator is missing in front of the number"},
    {L"(2 .5)", L"?", Reason::operatorMissing, 3, 5,
     L"Parse error at character 1: an operator is missing in front of the number"},
    {L"2 (3)", L"?", Reason::operatorMissing, 2, 3,
     L"Parse error at character 2: an operator is missing in front of the bracket"},
    {L"2 (cm + 3)", L"?", Reason::operatorMissing, 2, 3,
     L"Parse error at character 2: an operator is missing in front of the bracket"},
    {L"2 PI", L"?", Reason::operatorMissing, 2, 4,
     L"Parse error at character 2: an operator is missing in front of \"PI\""},
    {L"(2) PI", L"?", Reason::operatorMissing, 4, 6,
     L"Parse error at character 4: an operator is missing in front of \"PI\""},
    {L"max(1 2)", L"?", Reason::operatorMissing, 6, 7,
     L"Parse error at character 6: an operator is missing in front of the number"},
    {L"1 + 7/2 .2", L"?", Reason::numberAfterFraction, 4, 7,
     L"Parse error at character 8: a number can't follow the fraction \"7/2\""},
    {L"(2 + 3) cm", L"?", Reason::unitAfterBracket, 8, 10,
     L"Parse error at character 8: a unit can stand only after a number"},

    {L"(", L"?", Reason::bracketNotClosed, 0, 1, L"Abrupt Termination: a bracket isn't closed"},
    {L"(1 + 2", L"?", Reason::bracketNotClosed, 0, 1,
     L"Parse error at character 1: a bracket isn't closed"},
    {L"random(", L"?", Reason::bracketNotClosed, 6, 7,
     L"Parse error at character 6: a bracket isn't closed"},
    {L"2 (cm", L"?", Reason::bracketNotClosed, 2, 3,
     L"Parse error at character 2: a bracket isn't closed"},
    {L"1 + 2)", L"?", Reason::bracketClosesNone, 5, 6,
     L"Parse error at character 5: this bracket closes none"},
    {L")", L"?", Reason::bracketClosesNone, 0, 1, L"Abrupt Termination: this bracket closes none"},
    {L"1 + ( )", L"?", Reason::emptyBrackets, 4, 7,
     L"Parse error at character 2: nothing stands in the brackets"},
    {L"1; 2", L"?", Reason::semicolonOutsideFunction, 1, 2,
     L"Parse error at character 1: \";\" stands only between the arguments of a function"},
    {L"max((1;2);3)", L"?", Reason::semicolonOutsideFunction, 6, 7,
     L"Parse error at character 5: \";\" stands only between the arguments of a function"},

    {L"1 + cos 3", L"?", Reason::functionWithoutBrackets, 4, 7,
     L"Parse error at character 2: the arguments of \"cos\" go in brackets after it"},
    {L"pow(2)", L"?", Reason::wrongArgumentCount, 0, 3,
     L"Parse error at character 5: \"pow\" takes 2 arguments, not 1"},
    {L"max(2;3;4)", L"?", Reason::wrongArgumentCount, 0, 3,
     L"Parse error at character 9: \"max\" takes 2 arguments, not 3"},
    {L"1 + cos()", L"?", Reason::wrongArgumentCount, 4, 7,
     L"Parse error at character 2: \"cos\" takes 1 argument, not 0"},
    {L"cos(", L"?", Reason::wrongArgumentCount, 0, 3,
     L"Parse error at character 3: \"cos\" takes 1 argument, not 0"},
    {L"random(1)", L"?", Reason::wrongArgumentCount, 0, 6,
     L"Parse error at character 8: \"random\" takes no arguments, not 1"},

    {L"2cm^0.5", L"?", Reason::exponentOfUnit, 3, 7,
     L"Parse error at character 3: the exponent of a unit must be a whole number above zero"},
    {L"cm^1E", L"?", Reason::numberIncomplete, 3, 5,
     L"Parse error at character 2: a number isn't complete"},
    {L"cm^", L"?", Reason::exponentOfUnit, 2, 3,
     L"Parse error at character 2: the exponent of a unit must be a whole number above zero"},
    {L"2 cm^5000", L"?", Reason::unitTooLong, 4, 9,
     L"Parse error at character 4: the units have too many factors; one unit has 4096 at most"},
    {L"2 cm^4000 * 1 cm^4000", L"?", Reason::unitTooLong, 10, 11,
     L"Units don't Evaluate: the units have too many factors; one unit has 4096 at most"},
    {L"2 cm / (cm + 3)", L"?", Reason::otherThanUnitsInBrackets, 11, 12,
     L"Parse error at character 5: after a unit, brackets that begin with a unit can hold only "
     L"units, not \"+\""},

    {L"2 m * (1kg + 1cm)", L"?", Reason::differentUnits, 11, 12,
     L"Units don't Evaluate: the units on the two sides of \"+\" don't go together"},
    {L"5 kg % 2 cm", L"?", Reason::differentUnits, 5, 6,
     L"Units don't Evaluate: the units on the two sides of \"%\" don't go together"},
    {L"min(1 kg; 1 m)", L"?", Reason::differentUnits, 0, 3,
     L"Units don't Evaluate: the units of the arguments of \"min\" don't go together"},
    {L"(2cm)^0.5", L"?", Reason::unitsOfPower, 5, 6, c_power},
    {L"2 ^ (1 kg)", L"?", Reason::unitsOfPower, 2, 3, c_power},
    {L"pow(2 cm; 0.5)", L"?", Reason::unitsOfPower, 0, 3, c_power},
    {L"1 + sqrt(16 cm)", L"?", Reason::unitsOfArgument, 4, 8,
     L"Units don't Evaluate: the argument of \"sqrt\" must have no units"},
    {L"cos(1 cm)", L"?", Reason::unitsOfArgument, 0, 3,
     L"Units don't Evaluate: the argument of \"cos\" must be an angle"},
    {L"acos(1 cm)", L"?", Reason::unitsOfArgument, 0, 4,
     L"Units don't Evaluate: the argument of \"acos\" must have no units"},

    {L" 2 kg ", L"cm", Reason::otherThanExpectedUnits, 1, 5,
     L"Units mismatch between expected (centimeter) / (1) and evaluated (kilogram) / (1): a result "
     L"in cm (Length) is expected, but this is in kg (Mass)"},
    {L"2 cm", L"", Reason::otherThanExpectedUnits, 0, 4,
     L"Units mismatch between expected (1) / (1) and evaluated (centimeter) / (1): a result "
     L"without units is expected, but this is in cm (Length)"},
};

TEST(FailureExplanationTests, EachReasonHasItsPlaceAndItsMessage) {
    for (Row const & row : c_rows) {
        Expression const expression(row.text, contextOf(row.context));
        ParseResult const & result = expression.result();
        EXPECT_STREQ(failureName(result.failure()), failureName(row.reason)) << shown(row.text);
        EXPECT_EQ(result.failureStart(), row.start) << shown(row.text);
        EXPECT_EQ(result.failureEnd(), row.end) << shown(row.text);
        FailureExplanation const failure = explainFailure(expression);
        EXPECT_EQ(shown(failure.message), shown(row.message)) << shown(row.text);
        EXPECT_EQ(failure.reason, row.reason) << shown(row.text);
        EXPECT_EQ(failure.start, row.start) << shown(row.text);
        EXPECT_EQ(failure.end, row.end) << shown(row.text);
    }
}

TEST(FailureExplanationTests, EveryReasonIsInTheTable) {
    std::set<Reason> reasons{Reason::none, Reason::nestedTooDeep}; // these have tests of their own
    for (Row const & row : c_rows) reasons.insert(row.reason);
    std::size_t count = 0;
    while (*failureName(static_cast<Reason>(count))) ++count;
    EXPECT_EQ(count, 25U);
    EXPECT_EQ(reasons.size(), count);
}

TEST(FailureExplanationTests, NestingTooDeepIsToldWhereItBegins) {
    std::wstring const text = L"1+" + repeated(L"(", 5000);
    FailureExplanation const failure = explainFailure(Expression(text));
    EXPECT_EQ(failure.reason, Reason::nestedTooDeep);
    EXPECT_EQ(failure.start, 2 + Limits::c_nestingLevels);
    EXPECT_EQ(failure.end, failure.start + 1);
    EXPECT_EQ(failure.message, L"Parse error at character 1002: brackets, functions and signs "
                               L"stand more than 1000 deep in one another");
}

TEST(FailureExplanationTests, AllUnitsOfAnExpressionMayHaveTooManyFactors) {
    // Each term has a unit of its own, and they cancel.
    std::wstring text = L"1";
    for (int i = 1; i < 4090; ++i) {
        std::wstring const unit =
            L"1 s^" + std::to_wstring(4090 - i) + L" kg^" + std::to_wstring(i);
        text += L" + " + unit + L" / (" + unit + L")";
    }
    Expression const expression(text);
    ASSERT_EQ(expression.result().result(), EResult::unitsDontEval);
    FailureExplanation const failure = explainFailure(expression);
    EXPECT_EQ(failure.reason, Reason::unitTooLong);
    EXPECT_LT(failure.start, failure.end);
    EXPECT_LE(failure.end, text.size());
}

TEST(FailureExplanationTests, AConstantMayHaveTooLongUnitsByItself) {
    FailureExplanation const alone = explainFailure(Expression(L" Gravity cm^4096 "));
    EXPECT_EQ(alone.reason, Reason::unitTooLong);
    EXPECT_EQ(alone.start, 1U);
    EXPECT_EQ(alone.end, 16U);
    FailureExplanation const inSum = explainFailure(Expression(L"1 + Gravity cm^4096"));
    EXPECT_EQ(inSum.reason, Reason::unitTooLong);
    EXPECT_EQ(inSum.start, 2U);
}

TEST(FailureExplanationTests, UnknownNamesGetTheNearestSpelling) {
    struct Near {
        wchar_t const * text;
        std::vector<std::wstring> suggestions;
        wchar_t const * question;
    };
    Near const rows[] = {
        {L"2CM", {L"cm"}, L"did you mean cm?"},
        {L"2 MM", {L"mm", L"Mm"}, L"did you mean mm or Mm?"},
        {L"1 + (2 + (3 * metre))", {L"meter"}, L"did you mean meter?"},
        {L"2 mm2", {L"mm^2"}, L"did you mean mm^2?"},
        {L"squrt(4)", {L"sqrt"}, L"did you mean sqrt?"},
        {L"3 * gravity", {L"Gravity"}, L"did you mean Gravity?"},
        {L"2 lb", {L"lbmass", L"lbforce"}, L"did you mean lbmass or lbforce?"},
        {L"2 qqqq", {}, L""},
        {L"2 cm 3", {}, L""},
        {L"2 EUR", {}, L""},
        {L"5 G", {}, L""},
        {L"coz(2)", {L"cos"}, L"did you mean cos?"},
    };
    for (Near const & row : rows) {
        FailureExplanation const failure = explainFailure(Expression(row.text));
        EXPECT_EQ(failure.suggestions, row.suggestions) << shown(row.text);
        EXPECT_EQ(shown(failure.question), shown(row.question)) << shown(row.text);
    }
}

TEST(FailureExplanationTests, SuggestionsAreWordsOfTheVocabulary) {
    std::set<std::wstring> words;
    for (Vocabulary::Word const & word : Vocabulary::get().words()) {
        words.insert(word.text);
        EXPECT_TRUE(Vocabulary::isKnown(word.text)) << shown(word.text);
    }
    for (std::wstring const name : {L"metr", L"sinn", L"gram s", L"kilogramme", L"Pl", L"minn"}) {
        for (std::wstring const & near : Vocabulary::get().nearest(name))
            EXPECT_TRUE(words.contains(near)) << shown(near);
    }
    EXPECT_TRUE(Vocabulary::get().nearest(std::wstring(1000000, L'm')).empty());
}

TEST(FailureExplanationTests, KnownSpellingsGetAWholeTextToWrite) {
    struct Hint {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * hint;
        std::vector<std::wstring> corrections;
    };
    Hint const rows[] = {
        {L"5 Nm", L"?", L"write 5 N m", {L"5 N m"}},
        {L"2 lb", L"?", L"write 2 lbmass or 2 lbforce", {L"2 lbmass", L"2 lbforce"}},
        // What is expected decides.
        {L"2 lb", L"N", L"write 2 lbforce", {L"2 lbforce"}},
        {L"1,500 feet", L"?", L"write 1500 ft or 1,500 ft", {L"1500 ft", L"1,500 ft"}},
        {L"5 kgf", L"?", L"\"kgf\" isn't a unit here; write 5 * 9.80665 N", {L"5 * 9.80665 N"}},
        {L"20 EUR", L"?", L"\"EUR\" isn't a unit here; the nearest is $", {}},
        {L"3 px", L"?", L"\"px\" isn't a unit here", {}},
        // A guess is a question.
        {L"2 metr", L"?", L"", {L"2 meter"}},
        {L"7/2.2",
         L"?",
         L"\"7/2\" was read as a fraction; put the divisor in brackets: 7/(2.2)",
         {L"7/(2.2)"}},
        {L"5 m", L"kg", L"", {}},
    };
    for (Hint const & row : rows) {
        FailureExplanation const failure =
            explainFailure(Expression(row.text, contextOf(row.context)));
        EXPECT_EQ(shown(failure.hint), shown(row.hint)) << shown(row.text);
        EXPECT_EQ(failure.corrections, row.corrections) << shown(row.text);
    }
}

TEST(FailureExplanationTests, LongTextsHaveNoCorrections) {
    std::wstring const text = L"1" + repeated(L" + 1", 240) + L" + 5 Nm";
    FailureExplanation const failure = explainFailure(Expression(text, contextOf(L"N m")));
    EXPECT_EQ(failure.corrections.size(), 1U);
    EXPECT_EQ(failure.hint, L""); // it would fill the screen
    std::wstring const longer = text + repeated(L" + 1", 20);
    EXPECT_TRUE(explainFailure(Expression(longer, contextOf(L"N m"))).corrections.empty());
}

TEST(FailureExplanationTests, FractionsGetAHint) {
    struct Hint {
        wchar_t const * text;
        wchar_t const * hint;
    };
    Hint const rows[] = {
        {L"7/2.2", L"\"7/2\" was read as a fraction; put the divisor in brackets: 7/(2.2)"},
        {L"2 1/3", L"a fraction has a divisor of 2, 4, 8, 16, 32, 64 or 128; write it in "
                   L"brackets: (2 + 1/3)"},
        {L"1/2 5", L"to divide by more than the fraction takes, put the divisor in brackets"},
        {L"1/2 (5)", L"to divide by more than the fraction takes, put the divisor in brackets"},
        {L"3 5", L""},
    };
    for (Hint const & row : rows)
        EXPECT_EQ(shown(explainFailure(Expression(row.text)).hint), shown(row.hint));
}

TEST(FailureExplanationTests, ATreeWithoutAValueHasNoReasonButAnExplanation) {
    for (wchar_t const * const text : {L"1/0", L"acos(2)", L"1E308 km"}) {
        Expression const expression(text);
        ASSERT_TRUE(expression) << shown(text);
        FailureExplanation const failure = explainFailure(expression);
        EXPECT_EQ(failure.reason, Reason::none);
        EXPECT_FALSE(failure.hasPlace);
        EXPECT_EQ(failure.message, L"no value: a divisor is nearly zero, a number is too large, or "
                                   L"a function isn't defined for its argument");
    }
}

TEST(FailureExplanationTests, ResultsOfOthersAreExplainedAsFarAsTheyGo) {
    struct Other {
        void (*set)(ParseResult & result);
        wchar_t const * message;
    };
    Other const rows[] = {
        {[](ParseResult &) {}, L"Unknown Result"},
        {[](ParseResult & r) { r.expressionIsEmpty(); },
         L"Empty Expression: there is nothing to evaluate"},
        {[](ParseResult & r) { r.abruptTermination(); },
         L"Abrupt Termination: the text ends where more is needed"},
        {[](ParseResult & r) { r.failedToParse(70); }, L"Parse error at character 70"},
        {[](ParseResult & r) { r.unitsDontEval(); },
         L"Units don't Evaluate: the units of its parts don't go together"},
        {[](ParseResult & r) { r.badUnitString(); },
         L"Expected units specified incorrectly as a string: the unit isn't known"},
        // A piece that lies outside the text.
        {[](ParseResult & r) {
             r.failedToParse(4);
             r.failure(Reason::unknownName, 4000, 3);
         },
         L"Parse error at character 4: \"\" isn't a unit, a function or a constant"},
        {[](ParseResult & r) {
             r.failedToParse(4);
             r.failure(Reason::wrongArgumentCount, 0, 1, 7);
         },
         L"Parse error at character 4"},
    };
    for (Other const & row : rows) {
        ParseResult result;
        row.set(result);
        EXPECT_EQ(shown(explainFailure(L"2 + 2", {}, result).message), shown(row.message));
    }
}

TEST(FailureExplanationTests, LongPiecesAreClippedAndControlCharactersShown) {
    EXPECT_EQ(explainFailure(Expression(std::wstring(100, L'x'))).explanation,
              L"\"" + std::wstring(60, L'x') + L"...\" isn't a unit, a function or a constant");
    EXPECT_EQ(explainFailure(Expression(L"\x1B")).explanation,
              L"\"\u241B\" isn't a unit, a function or a constant");
    // What looks like the place of a value is taken as it is.
    EXPECT_EQ(Text::filled(L"%2% %1% %3% %", {L"%2%", L"b"}), L"b %2% %3% %");
}

// ---- Any text -----------------------------------------------------------------------------------

unsigned long numberOr(char const * variable, unsigned long otherwise) {
    char const * const text = std::getenv(variable);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

// A row of pieces, which are more often words of the language than not.
std::wstring randomText(std::mt19937 & random) {
    static wchar_t const * const s_pieces[] = {
        L"1",      L"2.5", L"7/2", L"3 1/4",  L"2' 6\"",     L"1E",      L"4E3",   L"0.5",
        L"cm",     L"kg",  L"deg", L"min",    L"PI",         L"Gravity", L"cos",   L"max",
        L"random", L"pow", L"+",   L"-",      L"*",          L"/",       L"%",     L"^",
        L"(",      L")",   L"(",   L")",      L";",          L"=",       L" ",     L" ",
        L"  ",     L"CM",  L"x",   L"&",      L"\u00B2",     L"\u00D7",  L"feet",  L"Nm",
        L"lb",     L"h",   L"pi",  L"\u00BD", L"kgf",        L"+5",      L"1,500", L".",
        L"\"",     L"'",   L"#",   L"\u65E5", L"\U0001F4CF", L"\t"};
    std::uniform_int_distribution<std::size_t> piece(0, std::size(s_pieces) - 1);
    std::uniform_int_distribution<int> length(0, 12);
    std::wstring text;
    for (int i = length(random); i > 0; --i) text += s_pieces[piece(random)];
    return text;
}

TEST(FailureExplanationTests, EveryFailureHasAReasonInsideTheText) {
    unsigned long const first = numberOr("VN_TEST_SEED", 1);
    unsigned long const seeds = numberOr("VN_TEST_SEEDS", 10);
    std::set<Reason> seen;
    for (unsigned long seed = first; seed < first + seeds; ++seed) {
        SCOPED_TRACE("VN_TEST_SEED=" + std::to_string(seed));
        std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
        for (int i = 0; i < 1000; ++i) {
            std::wstring const text = randomText(random);
            wchar_t const * const context = i % 3 == 0 ? L"?" : i % 3 == 1 ? L"cm" : L"";
            Expression const expression(text, contextOf(context));
            ParseResult const & result = expression.result();
            seen.insert(result.failure());
            if (expression) {
                ASSERT_EQ(result.failure(), Reason::none) << shown(text);
                continue;
            }
            ASSERT_NE(result.failure(), Reason::none) << shown(text);
            ASSERT_LE(result.failureStart(), result.failureEnd()) << shown(text);
            ASSERT_LE(result.failureEnd(), Text::length16(text)) << shown(text);
            if (i % 10 != 0) continue; // nearest words take their time
            FailureExplanation const failure = explainFailure(expression);
            ASSERT_FALSE(failure.explanation.empty()) << shown(text);
            ASSERT_EQ(failure.message, result.toString() + L": " + failure.explanation);
            for (std::wstring const & correction : failure.corrections)
                ASSERT_TRUE(Expression(correction, contextOf(context)).value())
                    << shown(text) << ' ' << shown(correction);
        }
    }
    EXPECT_GE(seen.size(), 20U);
}

TEST(FailureExplanationTests, AReasonGoesWhenTheResultIsUsedAgain) {
    ParseResult result;
    Interface const & engine = *Interface::get();
    EXPECT_EQ(engine.parse(L"2 CM", {}, result), nullptr);
    EXPECT_EQ(result.failure(), Reason::unknownName);
    Node * const node = engine.parse(L"2 cm", {}, result);
    EXPECT_EQ(result.failure(), Reason::none);
    engine.destroy(node);
    for (auto const set : {&ParseResult::expressionIsEmpty, &ParseResult::abruptTermination,
                           &ParseResult::unitsDontEval, &ParseResult::badUnitString}) {
        result.failure(Reason::unknownName, 1, 2);
        (result.*set)();
        EXPECT_EQ(result.failure(), Reason::none);
    }
}

// Whatever is looked at is passed, so that every look ends.
TEST(FailureExplanationTests, SignsInOddOrderAreLookedAtOnce) {
    for (wchar_t const * const text :
         {L"4,\u00B2", L".\u00B2", L",\u00B9,\u00B2,\u00B3", L"(PI) + 4,\u00B29.25 \u00B0 * 9.2",
          L"\u00BD.\u00B2", L"'.\u00B2\"", L"\u00B2,\u00B2 2 cm,"}) {
        FailureExplanation const failure = explainFailure(Expression(text));
        EXPECT_LE(failure.corrections.size(), 3U) << Text::toUtf8(text);
    }
}

// --- Lines, units and settings -----------------------------------------------------------------

using Texts = std::vector<std::wstring>;

TEST(FailureExplanationTests, ATextMayBePartOfALine) {
    TextAround const around{L"x = ", L" to J", Units::UnitContext(L"J")};
    FailureExplanation const failure = explainFailure(Expression(L"5 Nm"), around);
    EXPECT_EQ(failure.position, 6U);
    EXPECT_EQ(failure.start, 6U);
    EXPECT_EQ(failure.end, 8U);
    EXPECT_EQ(failure.suggestions, Texts{L"N m"});
    EXPECT_EQ(failure.hint, L"write x = 5 N m to J");
    EXPECT_EQ(failure.corrections, Texts{L"x = 5 N m to J"});
    // The fraction of a line too.
    EXPECT_EQ(explainFailure(Expression(L"7/2.2"), {{}, L" -> ?"}).corrections,
              Texts{L"7/(2.2) -> ?"});
    EXPECT_EQ(
        explainFailure(Expression(L"5 Nm"), {{}, L" to m", Units::UnitContext(L"m")}).corrections,
        Texts{});
}

TEST(FailureExplanationTests, AUnitIsExplainedAsWhatStandsAfterANumber) {
    FailureExplanation const failure =
        explainUnit(L"km/h", {L"60 mph to ", {}, Units::UnitContext(L"m/s")});
    EXPECT_EQ(failure.reason, Reason::unknownName);
    EXPECT_EQ(failure.start, 13U);
    EXPECT_EQ(failure.end, 14U);
    EXPECT_EQ(failure.suggestions, Texts{L"hr"});
    EXPECT_EQ(failure.hint, L"write 60 mph to km/hr");
    struct UnitRow {
        wchar_t const * unit;
        Texts wanted;
    };
    for (UnitRow const & row : {UnitRow{L"kWh", {L"kW hr"}},
                                {L"N\u00B7m", {L"N m"}},
                                {L"m\u00B2", {L"m^2"}},
                                {L"metr", {L"meter"}},
                                {L"\u00C5", {}},
                                {L"kgf", {}},
                                {L"3 in", {}},
                                {L"cm * 2", {}},
                                {L"", {}}})
        EXPECT_EQ(explainUnit(row.unit).corrections, row.wanted) << shown(row.unit);
    EXPECT_EQ(explainUnit(L"km/h", {{}, {}, Units::UnitContext(L"m")}).corrections, Texts{});
}

TEST(FailureExplanationTests, AGroupMayBeThousandsIfItsMarkIsNotThatOfDecimals) {
    auto const corrections = [](wchar_t const * text, bool isPoint) {
        Units::UnitDisplaySettings const settings =
            standardBut([=](auto & changed) { changed.decimalPointIsFullStop(isPoint); });
        return explainFailure(Expression(text), {{}, {}, {}, &settings}).corrections;
    };
    EXPECT_EQ(corrections(L"1,500 Nm", true), (Texts{L"1500 N m", L"1,500 N m"}));
    EXPECT_EQ(corrections(L"1.500 Nm", true), Texts{L"1.500 N m"});
    EXPECT_EQ(corrections(L"1,500 Nm", false), Texts{L"1,500 N m"});
    EXPECT_EQ(corrections(L"1.500 Nm", false), (Texts{L"1500 N m", L"1.500 N m"}));
    EXPECT_EQ(corrections(L"1.500,5 Nm", false), Texts{L"1500,5 N m"});
}

} // namespace

} // namespace Vn::Expressions
