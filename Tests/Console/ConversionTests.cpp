// Conversions around expressions, and the last value.

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Console/Conversion.h"
#include "Console/Equivalents.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Tests/Support/Process.h"

namespace Vn::Console::Tests {

namespace {

using Expressions::Expression;
using Units::UnitContext;
using Units::UnitDisplaySettings;

class ConversionTests : public testing::Test {
protected:
    static void SetUpTestSuite() { Initializer::runAll(); }

    Request read(std::wstring const & text, wchar_t const * unit = nullptr) const {
        return readRequest(text, unit ? UnitContext(std::wstring(unit)) : UnitContext(), m_last);
    }

    // What is shown for a text: the value; why there is none; or all units.
    static std::string answer(Request const & request) {
        if (request.refusal) return "refused: " + Text::toUtf8(request.refusal->message);
        if (!request.expression) return Text::toUtf8(request.expression.result().toString());
        UnitDisplaySettings const & settings = UnitDisplaySettings::standard();
        if (request.wantsEquivalents) {
            std::string all;
            for (Equivalent const & each : equivalentsOf(request.expression, settings))
                all += (all.empty() ? "" : ", ") + Text::toUtf8(each.formatted);
            return all;
        }
        UnitContext const & display =
            request.target ? *request.target : request.expression.context();
        return Text::toUtf8(request.expression.formatted(Units::ValueAndUnit, settings, display));
    }

    LastValue m_last;
};

TEST_F(ConversionTests, AValueIsShownInTheUnitAfterTheWord) {
    struct Row {
        wchar_t const * text;
        char const * answer;
    };
    Row const rows[] = {
        {L"100 mm to in", "3.937 in"},
        {L"100 mm -> in", "3.937 in"},
        {L"100 mm->in", "3.937 in"},
        {L"100 mm \u2192 in", "3.937 in"},
        {L"5 in to mm", "127.00 mm"},
        {L"100 C to F", "212.00 F"},
        {L"60 mph to km / hr", "96.561 km / hr"},
        {L"2 ft + 3 in -> m", "0.686 m"},
        {L"(5 mm) as in", "0.197 in"},
        {L"90\u00B0\tto\trad", "1.571 rad"},
        {L"max(2 ft; 1 m) to ft", "3.281 ft"},
    };
    for (Row const & row : rows) EXPECT_EQ(answer(read(row.text)), row.answer);
    EXPECT_EQ(answer(read(L"100 to in", L"cm")), "39.37 in"); // a bare number
}

// The language goes first: these are products, whatever is meant.
TEST_F(ConversionTests, ATextThatTheLanguageReadsIsNoConversion) {
    EXPECT_EQ(answer(read(L"mm as in")), "1.00 mm as in");
    EXPECT_EQ(answer(read(L"5 mm as in")), "5.00 mm as in");
    EXPECT_EQ(answer(read(L"5 in in mm")), "5.00 in^2 mm");
    EXPECT_EQ(answer(read(L"as in")), "1.00 as in");
    // Nor do units decide: this is a product that isn't a length.
    EXPECT_EQ(read(L"5 mm as in", L"cm").expression.result().result(),
              Expressions::EResult::unitMismatch);
}

TEST_F(ConversionTests, TheLongestExpressionCounts) {
    // "as" belongs to the expression, and to the unit.
    EXPECT_EQ(answer(read(L"1E18 mm as to mm s")), "1.00 mm s");
    EXPECT_EQ(answer(read(L"1E18 mm as in to in^2 s")), "0.039 in^2 s");
    EXPECT_EQ(answer(read(L"1 m s to m as")), "1.000E+18 m as");
}

TEST_F(ConversionTests, WhatIsMissingOrTooMuchIsTold) {
    struct Row {
        wchar_t const * text;
        char const * answer;
        std::size_t position;
    };
    Row const rows[] = {
        {L"5 to", "a unit, or \"?\" for all of them, is missing after \"to\"", 4},
        {L"5 in -> ", "a unit, or \"?\" for all of them, is missing after \"->\"", 8},
        {L"2 m -> ft -> in", "a value is converted once, and to one unit", 10},
        {L"2 m to ft to in", "a value is converted once, and to one unit", 10},
        {L"5 ft to inn", "\"inn\" isn't a unit", 8},
        {L"\U0001F4CF5 ft to inn", "", 0}, // isn't an expression
        {L"5 ft to 3 in", "\"3 in\" isn't a unit", 8},
        {L"5 ft to none", "\"none\" isn't a unit", 8},
        {L"->", "there is no last value yet", 0},
        {L"to in", "there is no last value yet", 0},
        {L"as ?", "there is no last value yet", 0},
        {L"2 * ans", "there is no last value yet", 4},
    };
    for (Row const & row : rows) {
        Request const request = read(row.text);
        if (!*row.answer) {
            EXPECT_FALSE(request.refusal || request.expression);
            continue;
        }
        ASSERT_TRUE(request.refusal) << Text::toUtf8(row.text);
        EXPECT_EQ(Text::toUtf8(request.refusal->message), row.answer);
        EXPECT_EQ(request.refusal->explanation.position, row.position) << Text::toUtf8(row.text);
    }
    EXPECT_EQ(refusalLines(*read(L"5 ft to metr").refusal), "\"metr\" isn't a unit\n"
                                                            "  5 ft to metr\n"
                                                            "          ^\n"
                                                            "  did you mean meter?\n");
}

// The lines that are told instead of a text, joined by " or ".
std::string corrections(Request const & request) {
    Expressions::FailureExplanation const failure =
        request.refusal ? request.refusal->explanation : explainFailure(request);
    std::string all;
    for (std::wstring const & each : failure.corrections)
        all += (all.empty() ? "" : " or ") + Text::toUtf8(each);
    bool const isTold =
        all.empty() || failure.hint.find(failure.corrections[0]) != std::wstring::npos;
    EXPECT_TRUE(isTold || failure.hint.empty()) << Text::toUtf8(failure.hint);
    return all;
}

TEST_F(ConversionTests, TheCorrectionOfALineIsAWholeLine) {
    struct Row {
        wchar_t const * text;
        char const * wanted;
    };
    Row const rows[] = {
        {L"5 Nm to J", "5 N m to J"},
        {L"5 Nm -> J", "5 N m -> J"},
        {L"5 Nm\u2192J", "5 N m\u2192J"},
        {L"5 Nm as ?", "5 N m as ?"},
        {L"7/2.2 in to cm", "(7/(2.2) * 1 in) to cm"},
        {L"1,000,000 mm to m", "1000000 mm to m"},
        // The unit.
        {L"60 mph to km/h", "60 mph to km/hr"},
        {L"60 mph  ->km/h", "60 mph  ->km/hr"},
        {L"5 ft to metr", "5 ft to meter"},
        {L"3 gal to cm\u00B3", "3 gal to cm^3"},
        {L"30 hr to degrees", ""}, // no such value
        {L"5 m to \u00C5", ""},    // so much of another unit
        // Both of them.
        {L"100 km/h to mi/h", "100 km/hr to mi/hr"},
        {L"5 Nm to kWh", "5 N m to kW hr"},
        // What the line can't be shown in.
        {L"5 Nm to m", ""},
        {L"5 Nm to foo", ""},
        {L"5 Nm to", ""},
    };
    for (Row const & row : rows) {
        std::string const found = corrections(read(row.text));
        EXPECT_EQ(found, row.wanted) << Text::toUtf8(row.text);
        if (found.empty()) continue;
        Request const again = read(Text::fromUtf8(found));
        EXPECT_TRUE(again.target || again.wantsEquivalents) << found;
        EXPECT_NE(answer(again), "") << found;
    }
    // What is left without a correction of the line has that of the word.
    EXPECT_EQ(explainFailure(read(L"5 Nm to foo")).suggestions, std::vector<std::wstring>{L"N m"});
}

TEST_F(ConversionTests, ARefusedUnitHasItsPlaceInTheLineAsTyped) {
    using nlohmann::json;
    Outcome const outcome =
        runConsole({"eval", "--standard", "--json", "--no-tokens", "--", "60 mph to km/h", "2 ft",
                    "ans + 1 in to metr", "ans to ans"});
    EXPECT_EQ(outcome.status, 1);
    std::istringstream lines(outcome.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(json::parse(line), (json{{"text", "60 mph to km/h"},
                                       {"error", "\"km/h\" isn't a unit"},
                                       {"start", 13},
                                       {"end", 14},
                                       {"suggestions", {"hr"}},
                                       {"hint", "write 60 mph to km/hr"},
                                       {"corrections", {"60 mph to km/hr"}}}));
    std::getline(lines, line);
    std::getline(lines, line);
    EXPECT_EQ(json::parse(line)["start"], 14);
    EXPECT_EQ(json::parse(line)["end"], 18);
    EXPECT_EQ(json::parse(line)["corrections"], json{"ans + 1 in to meter"});
    std::getline(lines, line);
    EXPECT_EQ(json::parse(line)["start"], 0);
}

// The failure is that of the expression.
TEST_F(ConversionTests, AnExpressionThatFailsIsToldAlone) {
    EXPECT_EQ(read(L"5 kgg to lb").expression.text(), L"5 kgg");
    EXPECT_EQ(read(L"2 + to in").expression.text(), L"2 +");
    EXPECT_EQ(read(L"how to do it").expression.text(), L"how");
    EXPECT_EQ(read(L"5 tomato").expression.text(), L"5 tomato");
    EXPECT_EQ(answer(read(L"1 kg + 1 m to cm")), "Units don't Evaluate");
}

TEST_F(ConversionTests, AnotherDimensionIsTold) {
    Outcome const outcome = runConsole({"eval", "5 kg to m"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "vnconsole: the value is in kg (Mass) and can't be shown in m (Length)\n");
    EXPECT_EQ(runConsole({}, "5 kg to m\n").err,
              "line 1: the value is in kg (Mass) and can't be shown in m (Length)\n");
}

TEST_F(ConversionTests, AQuestionMarkAsksForAllUnits) {
    EXPECT_EQ(answer(read(L"5 in as ?")),
              "5.00 in, 127.00 mm, 12.70 cm, 0.127 m, 1.270E+05 micron, "
              "0.417 ft, 0.139 yd, 7.891E-05 mi, 6.857E-05 "
              "nauticalMile, 5000.00 mil");
    EXPECT_EQ(answer(read(L"20 C -> ?")), "20.00 C, 293.16 K, 68.00 F");
    EXPECT_EQ(answer(read(L"9.81 m/s^2 to ?")), "9.81 m / s^2, 981.00 cm / s^2");
    EXPECT_EQ(answer(read(L"5 as ?")), "5.00");
    // A value that can't be had has none.
    EXPECT_EQ(answer(read(L"1/0 as ?")), "");
}

TEST_F(ConversionTests, TextsOfAnyLengthAreRead) {
    std::wstring words;
    for (int i = 0; i < 1000000; ++i) words += L"to ";
    EXPECT_FALSE(read(words).expression);
    EXPECT_FALSE(read(std::wstring(1000000, L'>')).expression);
    EXPECT_TRUE(read(L"2 in to " + std::wstring(1000000, L'x')).refusal);
    EXPECT_EQ(answer(read(L"2 in" + std::wstring(1000000, L' ') + L"to ft")), "0.167 ft");
}

class LastValueTests : public ConversionTests {
protected:
    std::string remember(wchar_t const * text, wchar_t const * unit = nullptr) {
        Request const request = read(text, unit);
        m_last.remember(request.expression, request.target ? &*request.target : nullptr);
        return m_last.text() ? Text::toUtf8(*m_last.text()) : "none";
    }
};

TEST_F(LastValueTests, IsTheTextToStore) {
    EXPECT_EQ(remember(L"1/0"), "none");
    EXPECT_EQ(remember(L"2 in+1cm"), "2 in + 1 cm");
    EXPECT_EQ(remember(L"1/0"), "2 in + 1 cm"); // which has no value
    EXPECT_EQ(remember(L"1/128 in"), "1/128 in");
    EXPECT_EQ(remember(L"20 C"), "20 C");
}

TEST_F(LastValueTests, ReadsInEveryContext) {
    EXPECT_EQ(remember(L"2", L"in"), "2 in");
    // The text to store would be inches only where inches are expected.
    EXPECT_EQ(remember(L"1/128", L"in"), "0.01984375 cm");
    EXPECT_EQ(answer(read(L"ans", L"mm")), "0.198 mm");
}

TEST_F(LastValueTests, KeepsTheUnitOfAConversion) {
    EXPECT_EQ(remember(L"20 C to K"), "293.16 K");
    EXPECT_EQ(remember(L"2 ft to in"), "24 in");
    EXPECT_EQ(remember(L"ans + 1 in"), "( 24 in ) + 1 in");
}

TEST_F(LastValueTests, StandsInBracketsAsANameOfItsOwn) {
    remember(L"2 in + 1 in");
    EXPECT_EQ(answer(read(L"ans * 2")), "6.00 in");
    EXPECT_EQ(answer(read(L"2*ans+ans")), "9.00 in");
    EXPECT_EQ(answer(read(L"-ans")), "-3.00 in");
    EXPECT_EQ(answer(read(L"ans to ft")), "0.25 ft");
    EXPECT_EQ(answer(read(L"-> ft")), "0.25 ft");
    EXPECT_EQ(answer(read(L"to mm")), "76.20 mm");
    EXPECT_EQ(answer(read(L"max(ans; 1 m)")), "39.37 in");
    for (wchar_t const * const other : {L"Ans", L"ANS", L"answer", L"2ans", L"ans2", L"mans"})
        EXPECT_FALSE(read(other).expression) << Text::toUtf8(other);
}

// Else a session of a hundred lines would need more memory than there is.
TEST_F(LastValueTests, StaysShort) {
    remember(L"1 in");
    for (int i = 0; i < 100; ++i) {
        remember(L"ans + ans");
        remember(L"ans / 2");
        ASSERT_TRUE(m_last.text());
        ASSERT_LE(m_last.text()->size(), 64u);
    }
    EXPECT_EQ(answer(read(L"ans to in")), "1.00 in");
    remember((std::wstring(100000, L'(') + L"2 in").c_str()); // isn't an expression
    remember((L"1 in" + std::wstring(1000000, L' ')).c_str());
    EXPECT_EQ(m_last.text(), L"2.54 cm");
}

TEST_F(LastValueTests, IsThatOfTheLineBefore) {
    EXPECT_EQ(runConsole({}, "ans\n2 in\nbogus\nans * 2\nunit mm\n-> cm\nans\n").out,
              "2.00 in\n"
              "  internal 5.08 cm, units in, rebuilt 2 in\n"
              "4.00 in\n"
              "  internal 10.16 cm, units in, rebuilt ( 2 in ) * 2\n"
              "expected unit: mm (Length)\n"
              "10.16 cm\n"
              "  internal 10.16 cm, units in, rebuilt ( 2 in ) * 2\n"
              "101.60 mm\n"
              "  internal 10.16 cm, units cm, rebuilt ( 10.16 cm )\n");
}

TEST_F(LastValueTests, ServesTheTextsOfEval) {
    using nlohmann::json;
    Outcome const outcome =
        runConsole({"eval", "--standard", "--json", "--no-tokens", "--", "2 in", "ans*2", "-> ?"});
    EXPECT_EQ(outcome.status, 0);
    std::istringstream lines(outcome.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_FALSE(json::parse(line).contains("expression"));
    std::getline(lines, line);
    EXPECT_EQ(json::parse(line)["text"], "ans*2");
    EXPECT_EQ(json::parse(line)["expression"], "(2 in)*2");
    EXPECT_EQ(json::parse(line)["formatted"], "4.00 in");
    std::getline(lines, line);
    json const equivalents = json::parse(line)["equivalents"];
    ASSERT_EQ(equivalents.size(), 10u);
    EXPECT_EQ(equivalents[0],
              (json{{"unit", "in"}, {"kind", "Length"}, {"value", 4.0}, {"formatted", "4.00 in"}}));
}

} // namespace

} // namespace Vn::Console::Tests
