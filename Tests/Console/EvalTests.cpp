#include <gtest/gtest.h>

#include "Tests/Support/Process.h"

namespace Vn::Console::Tests {

namespace {

struct Row {
    std::vector<std::string> arguments;
    char const * out;
};

void expectGood(Row const & row) {
    Outcome const outcome = runConsole(row.arguments);
    EXPECT_EQ(outcome.out, row.out);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(EvalTests, ShowsValueUnitsAndRebuiltText) {
    expectGood({{"eval", "2cm*2 + 3cm/2 - 2^3 + 4%3", "--unit", "cm"},
                "formatted  -1.50 cm\n"
                "internal   -1.5 cm\n"
                "units      cm\n"
                "rebuilt    2 cm * 2 + 3 cm / 2 - ( 2 ^ 3 ) * 1 cm + ( 4 % 3 ) * 1 cm\n"});
}

TEST(EvalTests, InternalValueHasTheFewestDigitsThatReadBack) {
    expectGood({{"eval", "0.1 + 0.2"},
                "formatted  0.30\n"
                "internal   0.30000000000000004\n"
                "units      none\n"
                "rebuilt    0.1 + 0.2\n"});
}

TEST(EvalTests, UnitsAreReadable) {
    expectGood({{"eval", "9.81 m/s^2", "--display", "ft / s^2"},
                "formatted  32.185 ft / s^2\n"
                "internal   981 cm / s^2\n"
                "units      m / s^2\n"
                "rebuilt    9.81 m / s^2\n"});
}

TEST(EvalTests, EmptyUnitExpectsAResultWithoutUnits) {
    expectGood({{"eval", "--unit", "", "2 cm / 1 in"},
                "formatted  0.787\n"
                "internal   0.7874015748031495\n"
                "units      none\n"
                "rebuilt    2 cm / 1 in\n"});
    EXPECT_EQ(runConsole({"eval", "--unit", "", "2 cm"}).status, 1);
}

TEST(EvalTests, TellsWhatToStoreWhereTheRebuiltTextIsRounded) {
    expectGood({{"eval", "1/128", "--unit", "in"},
                "formatted  0.008 in\n"
                "internal   0.01984375 cm\n"
                "units      in\n"
                "rebuilt    1/64\"\n"
                "store      1/128\n"
                "           (the rebuilt text would not read back to the same value)\n"});
}

TEST(EvalTests, SeveralTextsAreShownOneByOne) {
    expectGood({{"eval", "1 ft", "2 C"},
                "1 ft\n"
                "formatted  1.00 ft\n"
                "internal   30.48 cm\n"
                "units      ft\n"
                "rebuilt    1 ft\n"
                "\n"
                "2 C\n"
                "formatted  2.00 C\n"
                "internal   275.16 K\n"
                "units      C\n"
                "rebuilt    2 C\n"});
}

TEST(EvalTests, StandardSettingsAreTheFactorySettings) {
    expectGood({{"eval", "--standard", "177000 cm"},
                "formatted  1.770E+05 cm\n"
                "internal   177000 cm\n"
                "units      cm\n"
                "rebuilt    177000 cm\n"});
}

TEST(EvalTests, TextThatBeginsWithAMinusStandsAfterTwoDashes) {
    expectGood({{"eval", "--", "-5 in", "-PI"},
                "-5 in\n"
                "formatted  -5.00 in\n"
                "internal   -12.7 cm\n"
                "units      in\n"
                "rebuilt    -5 in\n"
                "\n"
                "-PI\n"
                "formatted  -3.142\n"
                "internal   -3.141592653589793\n"
                "units      none\n"
                "rebuilt    -PI\n"});
}

TEST(EvalTests, AnUnknownOptionTellsOfTheTwoDashes) {
    Outcome const outcome = runConsole({"eval", "-PI"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "TEXT is required\n"
              "Run with --help for more information.\n"
              "A text that begins with \"-\" goes after \"--\": vnconsole eval -- '-PI'\n");
}

// What the parser of the command line would take for a list, an end mark or nothing.
TEST(EvalTests, EveryTextIsTakenAsItIs) {
    Outcome const outcome = runConsole({"eval", "--json", "[1,2]", "++", "{}", "%%", "tour", ""});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> texts;
    for (std::size_t at = 0; (at = outcome.out.find("{\"text\":\"", at)) != std::string::npos;) {
        at += 9;
        texts.push_back(outcome.out.substr(at, outcome.out.find('"', at) - at));
    }
    EXPECT_EQ(texts, (std::vector<std::string>{"[1,2]", "++", "{}", "%%", "tour", ""}));
}

TEST(EvalTests, JsonIsOneObjectALine) {
    Outcome const outcome = runConsole({"eval", "--json", "--unit", "in", "1/128", "CM", "1/0"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        R"({"text":"1/128","parsed":true,"evaluated":true,"formatted":"0.008 in",)"
        R"("value":0.01984375,"internalUnits":"cm","units":"in","rebuilt":"1/64\"",)"
        R"("rebuiltReadsBack":false,"textToStore":"1/128"})"
        "\n"
        R"({"text":"CM","parsed":false,"result":"abruptTermination","position":0,)"
        R"("reason":"unknownName","start":0,"end":2,"error":"Abrupt Termination",)"
        R"("explanation":"\"CM\" isn't a unit, a function or a constant","suggestions":["cm"],)"
        R"("hint":""})"
        "\n"
        R"({"text":"1/0","parsed":true,"evaluated":false,"formatted":"","value":null,)"
        R"("internalUnits":"cm","units":"in","rebuilt":"( 1 / 0 ) * 1 in",)"
        R"("rebuiltReadsBack":true,"textToStore":"( 1 / 0 ) * 1 in","error":"no value: a divisor )"
        R"(is nearly zero, a number is too large, or a function isn't defined for its argument"})"
        "\n");
}

TEST(EvalTests, ReadingsThatPeopleRarelyMeanAreNotedBesideTheValue) {
    Outcome const power = runConsole({"eval", "2*3^2"});
    EXPECT_EQ(power.status, 0);
    EXPECT_EQ(power.out.substr(0, power.out.find('\n')), "formatted  36.00");
    EXPECT_EQ(power.err, "note: the power is that of all of \"2*3\"; to take the power first write "
                         "2*(3^2)\n");
    EXPECT_EQ(runConsole({"eval", "1,500 mm"}).err,
              "note: \"1,500\" is 1.500, with a comma for decimals; for thousands write 1500\n");
    EXPECT_EQ(runConsole({"eval", "2*(3^2)"}).err, "");
    Outcome const session = runConsole({}, "5 kilos\n");
    EXPECT_EQ(session.status, 0);
    EXPECT_EQ(session.err, "note: \"kilos\" was read as kilosecond; did you mean kg?\n");
}

TEST(EvalTests, TextThatDoesNotEvaluateSaysSo) {
    for (char const * const text : {"1/0", "1E308 km", "sqrt(-1)", "5 % 0"}) {
        Outcome const outcome = runConsole({"eval", text});
        EXPECT_EQ(outcome.status, 1) << text;
        EXPECT_EQ(outcome.err, "vnconsole: no value: a divisor is nearly zero, a number is too "
                               "large, or a function isn't defined for its argument\n")
            << text;
        EXPECT_EQ(outcome.out.find("formatted"), std::string::npos) << text;
        EXPECT_NE(outcome.out.find("rebuilt"), std::string::npos) << text;
    }
}

TEST(EvalTests, OneBadTextMakesTheStatusBad) {
    Outcome const outcome = runConsole({"eval", "1 cm", "CM", "2 cm"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "1 cm\n"
                           "formatted  1.00 cm\n"
                           "internal   1 cm\n"
                           "units      cm\n"
                           "rebuilt    1 cm\n"
                           "\n"
                           "CM\n"
                           "\n"
                           "2 cm\n"
                           "formatted  2.00 cm\n"
                           "internal   2 cm\n"
                           "units      cm\n"
                           "rebuilt    2 cm\n");
}

TEST(EvalTests, ValueIsNotShownInAUnitOfAnotherKind) {
    Outcome const outcome = runConsole({"eval", "2 cm", "--display", "kg"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "vnconsole: the value is in cm (Length) and can't be shown in kg (Mass)\n");
}

TEST(EvalTests, UnknownUnitOfAnOptionIsAUsageError) {
    struct Bad {
        std::vector<std::string> arguments;
        char const * err;
    };
    Bad const rows[] = {
        {{"eval", "2", "--unit", "bogus"}, "vnconsole: --unit: \"bogus\" isn't a unit\n"},
        {{"eval", "2", "--unit", "CM"},
         "vnconsole: --unit: \"CM\" isn't a unit\n  did you mean cm?\n"},
        {{"eval", "2", "--unit", "?"}, "vnconsole: --unit: \"?\" isn't a unit\n"},
        {{"eval", "2", "--display", "2 cm"}, "vnconsole: --display: \"2 cm\" isn't a unit\n"},
    };
    for (Bad const & row : rows) {
        Outcome const outcome = runConsole(row.arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, row.err);
    }
}

TEST(EvalTests, UnitMismatchIsToldInReadableUnits) {
    struct Mismatch {
        std::vector<std::string> arguments;
        char const * err;
    };
    Mismatch const rows[] = {
        {{"eval", "2kg", "--unit", "cm"},
         "Units mismatch between expected (centimeter) / (1) and evaluated (kilogram) / (1): a "
         "result in cm (Length) is expected, but this is in kg (Mass)\n  2kg\n"},
        {{"eval", "2 cm", "--unit", ""},
         "Units mismatch between expected (1) / (1) and evaluated (centimeter) / (1): a result "
         "without units is expected, but this is in cm (Length)\n  2 cm\n"},
    };
    for (Mismatch const & row : rows) {
        Outcome const outcome = runConsole(row.arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, row.err);
    }
}

TEST(EvalTests, ConflictingUnitsAreTold) {
    Outcome const outcome = runConsole({"eval", "1kg + 1cm"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "Units don't Evaluate: the units on the two sides of \"+\" don't go together\n"
              "  1kg + 1cm\n"
              "      ^\n");
}

TEST(EvalTests, TextIsUtf8) {
    expectGood({{"eval", "90\u00B0"},
                "formatted  90.0 deg\n"
                "internal   1.5707963267948966 rad\n"
                "units      deg\n"
                "rebuilt    90 deg\n"});
}

} // namespace

} // namespace Vn::Console::Tests
