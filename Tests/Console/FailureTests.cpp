// What a person is told about a text that doesn't parse.

#include <gtest/gtest.h>

#include "Tests/Support/Process.h"

namespace Vn::Console::Tests {

namespace {

struct Row {
    char const * text;
    char const * err;
};

void expectFailure(Row const & row) {
    Outcome const outcome = runConsole({"eval", "--", row.text});
    EXPECT_EQ(outcome.err, row.err) << row.text;
    EXPECT_EQ(outcome.out, "") << row.text;
    EXPECT_EQ(outcome.status, 1) << row.text;
}

std::string lastLine(std::string const & text) {
    return text.substr(text.rfind('\n', text.size() - 2) + 1);
}

template <std::size_t N>
void expectFailures(Row const (&rows)[N]) {
    for (Row const & row : rows) expectFailure(row);
}

TEST(FailureTests, EmptyTextsHaveNothingToPointAt) {
    expectFailures({
        {"", "Empty Expression: there is nothing to evaluate\n"},
        {"  ", "Empty Expression: there is nothing to evaluate\n    \n"},
    });
}

TEST(FailureTests, CaretStandsUnderThePosition) {
    expectFailures({
        {"2 + ", "Parse error at character 2: nothing that can be used follows \"+\"\n"
                 "  2 + \n"
                 "    ^\n"},
        {"1 ()", "Parse error at character 2: an operator is missing in front of the bracket\n"
                 "  1 ()\n"
                 "    ^\n"},
        {"3 5", "Parse error at character 2: an operator is missing in front of the number\n"
                "  3 5\n"
                "    ^\n"},
        {"(", "Abrupt Termination: a bracket isn't closed\n"
              "  (\n"
              "  ^\n"},
    });
}

TEST(FailureTests, CaretCountsColumnsOfWideCharacters) {
    expectFailures({
        // Two columns each.
        {"\u65E5\u672C", "Abrupt Termination: \"\u65E5\u672C\" isn't a unit, a function or a "
                         "constant\n"
                         "  \u65E5\u672C\n"
                         "  ^\n"},
        {"1\u3000\u3000+ 2 3", "Parse error at character 7: an operator is missing in front of the "
                               "number\n"
                               "  1\u3000\u3000+ 2 3\n"
                               "           ^\n"},
    });
}

TEST(FailureTests, CaretDoesNotCountCombiningCharacters) {
    expectFailure({"2 + me\u0301 5", "Parse error at character 2: \"me\u0301\" isn't a unit, a "
                                     "function or a constant\n"
                                     "  2 + me\u0301 5\n"
                                     "    ^ ~~\n"});
    // "e" with an acute accent is one column of two characters.
    expectFailure({"e\u0301 + 2", "Parse error at character 3: \"e\u0301\" isn't a unit, a "
                                  "function or a constant\n"
                                  "  e\u0301 + 2\n"
                                  "  ~ ^\n"});
}

TEST(FailureTests, PositionsCountTwoForCharactersAboveTheFirstPlane) {
    expectFailure({"\U0001F4CF + 2", "Parse error at character 3: \"\U0001F4CF\" isn't a unit, a "
                                     "function or a constant\n"
                                     "  \U0001F4CF + 2\n"
                                     "  ~~ ^\n"});
}

TEST(FailureTests, TabsStandInBothLines) {
    expectFailure({"1\t+\t2 3", "Parse error at character 6: an operator is missing in front of "
                                "the number\n"
                                "  1\t+\t2 3\n"
                                "   \t \t  ^\n"});
}

TEST(FailureTests, ControlCharactersAreShownByTheirPictures) {
    expectFailure({"1 +\n\x1B 2", "Parse error at character 2: \"\u241B\" isn't a unit, a function "
                                  "or a constant\n"
                                  "  1 +\u240A\u241B 2\n"
                                  "    ^ ~\n"});
    // A mark that reverses the direction of what follows is replaced.
    expectFailure({"1 & \u202E 2", "Parse error at character 2: \"&\" has no meaning in an "
                                   "expression\n"
                                   "  1 & \uFFFD 2\n"
                                   "    ^\n"});
}

TEST(FailureTests, LongTextsAreShownAsAWindow) {
    std::string sum = "1";
    for (int i = 0; i < 100; ++i) sum += " + 1";
    expectFailure({(sum + " 2" + sum).c_str(),
                   "Parse error at character 402: an operator is missing in front of the number\n"
                   "  ...+ 1 + 1 + 1 + 1 + 1 + 1 + 1 + 1 + 1 + 1 21 + 1 + 1 + 1 + 1 + 1 + 1 + 1 + "
                   "1 +...\n"
                   "                                             ^\n"});
}

TEST(FailureTests, UnknownNamesGetTheNearestSpelling) {
    struct Near {
        char const * text;
        char const * suggestion;
    };
    Near const rows[] = {
        {"2CM", "  did you mean cm?\n"},
        {"2 MM", "  did you mean mm or Mm?\n"},
        {"2 metr", "  did you mean meter?\n"},
        {"2 kilometr", "  did you mean kilometer?\n"},
        {"3 celcius", "  did you mean celsius?\n"},
        {"2 degres", "  did you mean degree?\n"},
        {"2 inchh", "  did you mean inch?\n"},
        {"Cos(2)", "  did you mean cos?\n"},
        {"3 * gravity", "  did you mean Gravity?\n"},
        {"1 + (2 + (3 * metr))", "  did you mean meter?\n"},
    };
    for (Near const & row : rows) {
        Outcome const outcome = runConsole({"eval", row.text});
        EXPECT_EQ(outcome.status, 1) << row.text;
        ASSERT_GE(outcome.err.size(), std::string(row.suggestion).size()) << row.text;
        EXPECT_EQ(lastLine(outcome.err), row.suggestion) << row.text;
    }
}

TEST(FailureTests, KnownSpellingsAreShownAsAWholeText) {
    struct Write {
        char const * text;
        char const * told;
    };
    Write const rows[] = {
        {"5 Nm", "  write 5 N m\n"},
        {"2 * pi", "  write 2 * PI\n"},
        {"2 lb", "  write 2 lbmass or 2 lbforce\n"},
        {"2 mm2", "  write 2 mm^2\n"},
        {"1 m + (3 * metres)", "  write 1 m + (3 * meter)\n"},
        {"10^3 mm", "  write 1E3 mm\n"},
        {"20 EUR", "  \"EUR\" isn't a unit here; the nearest is $\n"},
        {"5 kgf", "  \"kgf\" isn't a unit here; write 5 * 9.80665 N\n"},
    };
    for (Write const & row : rows) {
        Outcome const outcome = runConsole({"eval", row.text});
        EXPECT_EQ(outcome.status, 1) << row.text;
        EXPECT_EQ(lastLine(outcome.err), row.told) << row.text;
        EXPECT_EQ(outcome.err.find("did you mean"), std::string::npos) << outcome.err;
    }
}

TEST(FailureTests, NothingIsSuggestedWhereNothingIsNear) {
    for (char const * const text : {"2 x", "2 qqqq", "2 zz", "foobarbaz(2)"}) {
        Outcome const outcome = runConsole({"eval", text});
        EXPECT_EQ(outcome.status, 1) << text;
        EXPECT_EQ(outcome.err.find("did you mean"), std::string::npos) << outcome.err;
    }
}

TEST(FailureTests, WhatStandsRightAfterAFractionGetsAHint) {
    struct Hint {
        char const * text;
        char const * hint;
    };
    Hint const rows[] = {
        {"7/2.2", "  \"7/2\" was read as a fraction; put the divisor in brackets: 7/(2.2)\n"},
        {"1/2E3", "  \"1/2\" was read as a fraction; put the divisor in brackets: 1/(2E3)\n"},
        {"1/2E-3", "  \"1/2\" was read as a fraction; put the divisor in brackets: 1/(2E-3)\n"},
        {"1 + 7/2.2 * 3", "  \"7/2\" was read as a fraction; put the divisor in brackets: "
                          "1 + 7/(2.2) * 3\n"},
        {"5 7/2.2", "  \"5 7/2\" was read as a fraction; put the divisor in brackets: "
                    "(5 + 7/(2.2))\n"},
        {"7/2.2 cm", "  \"7/2\" was read as a fraction; put the divisor in brackets: "
                     "(7/(2.2) * 1 cm)\n"},
        {"cos(7/2.2)", "  \"7/2\" was read as a fraction; put the divisor in brackets: "
                       "cos(7/(2.2))\n"},
        {"2 1/3", "  a fraction has a divisor of 2, 4, 8, 16, 32, 64 or 128; write it in brackets: "
                  "(2 + 1/3)\n"},
        {"2 1/3 cm", "  a fraction has a divisor of 2, 4, 8, 16, 32, 64 or 128; write it in "
                     "brackets: ((2 + 1/3) * 1 cm)\n"},
        {"1/2 5", "  to divide by more than the fraction takes, put the divisor in brackets\n"},
    };
    for (Hint const & row : rows) {
        Outcome const outcome = runConsole({"eval", row.text});
        EXPECT_EQ(outcome.status, 1) << row.text;
        EXPECT_EQ(lastLine(outcome.err), row.hint) << row.text;
    }
}

TEST(FailureTests, TheTextOfAHintGivesTheQuotient) {
    Outcome const outcome = runConsole({"eval", "--json", "7/(2.2)", "1/(2E3)", "(2 + 1/3)",
                                        "((2 + 1/3) * 1 cm)", "(7/(2.2) * 1 cm)"});
    EXPECT_EQ(outcome.status, 0);
    for (char const * const value : {"\"value\":3.18181818", "\"value\":0.00050000000000000001,",
                                     "\"value\":2.33333333", "\"internalUnits\":\"cm\""})
        EXPECT_NE(outcome.out.find(value), std::string::npos) << value;
}

TEST(FailureTests, ExplanationsNameWhatIsWrong) {
    struct Reason {
        char const * text;
        char const * reason;
    };
    Reason const rows[] = {
        {"pow(2)", "\"pow\" takes 2 arguments, not 1"},
        {"max(2;3;4)", "\"max\" takes 2 arguments, not 3"},
        {"cos()", "\"cos\" takes 1 argument, not 0"},
        {"random(1)", "\"random\" takes no arguments, not 1"},
        {"1 + pow(2) * 3", "\"pow\" takes 2 arguments, not 1"},
        {"cos 3", "the arguments of \"cos\" go in brackets after it"},
        {"(1 + 2", "a bracket isn't closed"},
        {"1 + 2)", "this bracket closes none"},
        {"1; 2", "\";\" stands only between the arguments of a function"},
        {"a = 2", "\"a\" isn't a unit, a function or a constant"},
        {"2 = 2", "\"=\" has no meaning in an expression"},
        {"2 & 3", "\"&\" has no meaning in an expression"},
        {"{2}", "\"{\" has no meaning in an expression"},
        {"2cm^0.5", "the exponent of a unit must be a whole number above zero"},
        {"cm^-1", "the exponent of a unit must be a whole number above zero"},
        {"(2 + 3) cm", "a unit can stand only after a number"},
        {"2 PI", "an operator is missing in front of \"PI\""},
        {"2 *", "nothing that can be used follows \"*\""},
        {"()", "nothing stands in the brackets"},
        {"7/2.2", "a number can't follow the fraction \"7/2\""},
    };
    for (Reason const & row : rows) {
        Outcome const outcome = runConsole({"eval", row.text});
        EXPECT_EQ(outcome.status, 1) << row.text;
        std::string const line = outcome.err.substr(0, outcome.err.find('\n'));
        EXPECT_EQ(line.substr(line.find(": ") + 2), row.reason) << row.text;
    }
}

TEST(FailureTests, TooDeepNestingIsTold) {
    Outcome const outcome = runConsole({"eval", std::string(100000, '(')});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "Parse error at character 1000: brackets, functions and signs stand more than 1000 "
              "deep in one another\n"
              "  ..." +
                  std::string(40, '(') + std::string(36, '(') +
                  "...\n"
                  "     " +
                  std::string(40, ' ') + "^\n");
}

} // namespace

} // namespace Vn::Console::Tests
