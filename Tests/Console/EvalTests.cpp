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
              "The following argument was not expected: -PI\n"
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
    Outcome const outcome =
        runConsole({"eval", "--json", "--no-tokens", "--unit", "in", "1/128", "CM", "1/0"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        R"({"text":"1/128","parsed":true,"result":"parsedOk","position":0,"message":"Success!",)"
        R"j("evaluated":true,"value":0.01984375,"units":"(inch) / (1)","formatted":"0.008 in",)j"
        R"("rebuilt":"1/64\"","formattedValueOnly":"0.008","formattedUnitOnly":"in",)"
        R"("rebuiltValueOnly":"1/64","readableUnits":"in","internalUnits":"cm",)"
        R"("rebuiltReadsBack":false,"textToStore":"1/128","reason":"none","start":0,"end":0,)"
        R"("explanation":"","suggestions":[],"hint":"","corrections":[],"notes":[]})"
        "\n"
        R"({"text":"CM","parsed":false,"result":"abruptTermination","position":0,"message":)"
        R"("Abrupt Termination","evaluated":false,"value":null,"units":"","formatted":"",)"
        R"("rebuilt":"","formattedValueOnly":"","formattedUnitOnly":"","rebuiltValueOnly":"",)"
        R"("readableUnits":"","internalUnits":"","rebuiltReadsBack":false,"textToStore":"",)"
        R"("reason":"unknownName","start":0,"end":2,"explanation":"\"CM\" isn't a unit, a )"
        R"(function or a constant","suggestions":["cm"],"hint":"","corrections":["cm"],"notes":[]})"
        "\n"
        R"({"text":"1/0","parsed":true,"result":"parsedOk","position":0,"message":"Success!",)"
        R"j("evaluated":false,"value":null,"units":"(inch) / (1)","formatted":"",)j"
        R"j("rebuilt":"( 1 / 0 ) * 1 in","formattedValueOnly":"","formattedUnitOnly":"",)j"
        R"j("rebuiltValueOnly":"( 1 / 0 ) * 1 in","readableUnits":"in","internalUnits":"cm",)j"
        R"j("rebuiltReadsBack":true,"textToStore":"( 1 / 0 ) * 1 in","reason":"none","start":0,)j"
        R"("end":0,"explanation":"a divisor is nearly zero, a number is too large, or a function )"
        R"(isn't defined for its argument","suggestions":[],"hint":"","corrections":[],"notes":[]})"
        "\n");
}

TEST(EvalTests, JsonOfAValueThatCanNotBeShownIsAnError) {
    Outcome const outcome = runConsole({"eval", "--json", "2 cm", "--display", "kg"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, R"({"text":"2 cm","error":"the value is in cm (Length) and can't be )"
                           R"j(shown in kg (Mass)"})j"
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
    EXPECT_EQ(session.err, "line 1: note: \"kilos\" was read as kilosecond; did you mean kg?\n");
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

TEST(EvalTests, PrecisionIsTheNumberOfDecimals) {
    struct Rounded {
        char const * precision;
        char const * text;
        char const * formatted;
    };
    Rounded const rows[] = {
        {"6", "1/3", "formatted  0.333333\n"},
        {"1", "2.54 cm", "formatted  2.5 cm\n"},
        {"0", "2.54 cm", "formatted  3 cm\n"},
        {"6", "2.5 cm", "formatted  2.50 cm\n"},
        {"4", "1 rad", "formatted  1.00 rad\n"},
        {"5", "177123 cm", "formatted  1.77123E+05 cm\n"},
        {"3", "1 deg / 3", "formatted  0.333 deg\n"},
    };
    for (Rounded const & row : rows) {
        Outcome const outcome =
            runConsole({"eval", "--standard", "--precision", row.precision, row.text});
        EXPECT_EQ(outcome.err, "") << row.text;
        EXPECT_EQ(outcome.out.substr(0, outcome.out.find('\n') + 1), row.formatted) << row.text;
    }
    for (char const * const bad : {"-1", "x", "2.5", "101", "99999999999"}) {
        Outcome const outcome = runConsole({"eval", std::string("--precision=") + bad, "2"});
        EXPECT_EQ(outcome.status, 2) << bad;
        EXPECT_EQ(outcome.out, "") << bad;
    }
    EXPECT_EQ(runConsole({"eval", "--precision", "x", "2"}).err,
              "vnconsole: --precision takes a whole number from 0 to 100, not \"x\"\n");
}

TEST(EvalTests, SettingsHoldForTheCall) {
    Outcome const outcome = runConsole({"eval", "--standard", "--set", "lengthDisplay=1",
                                        "--set=COMPRESSUNITS = off", "2.5 in", "3 m^2"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("formatted  2 1/2\"\n"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("formatted  3.00 m m\n"), std::string::npos) << outcome.out;
    // What stands last counts, and the precision goes first.
    EXPECT_EQ(runConsole({"eval", "--set", "generalPrecision=4", "--precision=1", "--json",
                          "--set=minimumPrecision=0", "--no-tokens", "1/3"})
                      .out.find("\"formatted\":\"0.3333\"") != std::string::npos,
              true);
}

// Where the decimal mark is the comma, a full stop is one too, unless it may part thousands.
TEST(EvalTests, ANumberOfASettingHasTheDecimalMarkOfTheUser) {
    auto const eval = [](std::string const & mark, std::string const & threshold) {
        return runConsole({"eval", "--standard", "--set", "decimalPointIsFullStop=" + mark, "--set",
                           "useScientificNotationAboveThreshold=" + threshold, "12"});
    };
    EXPECT_NE(eval("false", "11,5").out.find("1.200E+01"), std::string::npos);
    EXPECT_NE(eval("false", "11.5").out.find("1.200E+01"), std::string::npos);
    EXPECT_NE(eval("false", "1,1E1").out.find("1.200E+01"), std::string::npos);
    EXPECT_NE(eval("false", "0.125").out.find("1.200E+01"), std::string::npos);
    EXPECT_NE(eval("false", "12,125").out.find("12,00"), std::string::npos);
    EXPECT_NE(eval("true", "11.5").out.find("1.200E+01"), std::string::npos);
    std::string const name = "vnconsole: --set: useScientificNotationAboveThreshold";
    EXPECT_EQ(eval("true", "11,5").err, name + " is a number, not \"11,5\"\n");
    EXPECT_EQ(eval("false", "1.000,5").err, name + " is a number, not \"1.000,5\"\n");
    EXPECT_EQ(eval("false", "1,000.5").err, name + " is a number, not \"1,000.5\"\n");
    EXPECT_EQ(eval("false", "10.000").err, "vnconsole: --set: \"10.000\" can mean 10,000 or "
                                           "10000: write one of these\n");
    EXPECT_EQ(eval("false", "-1.000").err, "vnconsole: --set: \"-1.000\" can mean -1,000 or "
                                           "-1000: write one of these\n");
}

TEST(EvalTests, ASettingThatIsNoneIsTold) {
    struct Refused {
        char const * setting;
        char const * err;
    };
    Refused const rows[] = {
        {"lengthDisplay=3", "vnconsole: --set: lengthDisplay takes a whole number from 0 to 2\n"},
        {"lengthDisplay=x", "vnconsole: --set: lengthDisplay is a number, not \"x\"\n"},
        {"compressUnits=", "vnconsole: --set: compressUnits is true or false, not \"\"\n"},
        {"compressUnits", "vnconsole: --set: a value is missing, as in compressUnits=true\n"},
        {"lengthdisplai=1",
         "vnconsole: --set: there is no setting \"lengthdisplai\"; did you mean lengthDisplay?\n"},
        {"=1", "vnconsole: --set: there is no setting \"\"; \"set\" in a session lists them\n"},
    };
    for (Refused const & row : rows) {
        Outcome const outcome = runConsole({"eval", "--set", row.setting, "2"});
        EXPECT_EQ(outcome.status, 2) << row.setting;
        EXPECT_EQ(outcome.out, "") << row.setting;
        EXPECT_EQ(outcome.err, row.err);
    }
}

TEST(EvalTests, WithoutATextTheLinesOfTheInputAreRead) {
    Outcome const outcome = runConsole({"eval", "--unit", "cm"}, "2 in\r\n\n  CM\n 1/0 \n\xFF\n3");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "2 in\n"
                           "formatted  5.08 cm\n"
                           "internal   5.08 cm\n"
                           "units      in\n"
                           "rebuilt    2 in\n"
                           "\n"
                           "CM\n"
                           "\n"
                           "1/0\n"
                           "units    cm\n"
                           "rebuilt  ( 1 / 0 ) * 1 cm\n"
                           "\n"
                           "3\n"
                           "formatted  3.00 cm\n"
                           "internal   3 cm\n"
                           "units      cm\n"
                           "rebuilt    3 cm\n");
    EXPECT_EQ(outcome.err,
              "line 3: Abrupt Termination: \"CM\" isn't a unit, a function or a constant\n"
              "  CM\n"
              "  ^\n"
              "  did you mean cm?\n"
              "line 4: vnconsole: no value: a divisor is nearly zero, a number is too large, or a "
              "function isn't defined for its argument\n"
              "line 5: the line isn't UTF-8\n");
    EXPECT_EQ(runConsole({"eval"}, "").status, 0);
}

TEST(EvalTests, AByteOrderMarkIsPassedOverInFrontOfAllLines) {
    std::string const mark = "\xEF\xBB\xBF";
    Outcome const outcome =
        runConsole({"eval", "--json", "--no-tokens"}, mark + "2 cm\r\n3 cm\r\n");
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_TRUE(outcome.out.starts_with("{\"text\":\"2 cm\",")) << outcome.out;
    EXPECT_NE(outcome.out.find("\n{\"text\":\"3 cm\","), std::string::npos) << outcome.out;
    EXPECT_EQ(runConsole({"eval"}, mark).status, 0);
    // Elsewhere it is a character that no expression has.
    EXPECT_EQ(runConsole({"eval"}, "2 cm\n" + mark + "3 cm\n").status, 1);
    EXPECT_EQ(runConsole({"eval"}, mark + mark + "3 cm\n").status, 1);
}

TEST(EvalTests, LinesInAnotherEncodingAreRefusedOnce) {
    using namespace std::string_literals;
    for (std::string const & input : {"\xFF\xFE"
                                      "2\0\n\0"
                                      "3\0\n\0"s,
                                      "\xFE\xFF\0"
                                      "2\0\n\0"
                                      "3"s}) {
        Outcome const outcome = runConsole({"eval"}, input);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "line 1: the input is in UTF-16; only UTF-8 is read\n");
        EXPECT_EQ(runConsole({"eval", "--json"}, input).out,
                  "{\"error\":\"the input is in UTF-16; only UTF-8 is read\",\"line\":1}\n");
    }
    EXPECT_EQ(runConsole({"eval"}, "\xFF\xFE\0\0"
                                   "2\0\0\0"s)
                  .err,
              "line 1: the input is in UTF-32; only UTF-8 is read\n");
    EXPECT_EQ(runConsole({"eval"}, "\0\0\xFE\xFF\0\0\0"
                                   "2"s)
                  .err,
              "line 1: the input is in UTF-32; only UTF-8 is read\n");
}

TEST(EvalTests, LinesOfAnyLengthAndNumberAreRead) {
    std::string const digits(5000000, '7');
    std::string const name(5000000, 'x');
    Outcome const outcome =
        runConsole({"eval", "--json", "--no-tokens"},
                   digits + "\n" + name + "\n2 in" + std::string(5000000, ' ') + "to cm\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.out.find("\"reason\":\"unknownName\""), std::string::npos);
    EXPECT_NE(outcome.out.find("\"formatted\":\"5.08 cm\""), std::string::npos);

    std::string lines = "1\n";
    for (int i = 0; i < 20000; ++i) lines += "ans + 1\n";
    std::string const all = runConsole({"eval", "--standard"}, lines).out;
    EXPECT_NE(all.find("internal   20001\n"), std::string::npos);
}

#ifndef _WIN32 // whose shell is another
TEST(EvalTests, EndsWhenNobodyReads) {
    Outcome const outcome = runShell("yes \"2 in\" | \"$VNCONSOLE\" eval | head -n 2");
    EXPECT_EQ(outcome.out, "2 in\nformatted  2.00 in\n");
}

// A program at the other end sends a line and waits for its answer.
TEST(EvalTests, EachLineIsAnsweredBeforeTheNextComes) {
    Outcome const outcome = runShell(R"(
        fifo=$(mktemp -u) && mkfifo "$fifo"
        "$VNCONSOLE" eval --json < "$fifo" | {
            exec 3> "$fifo"
            echo '2 in' >&3
            read -r first
            echo 'ans to cm' >&3
            read -r second
            exec 3>&-
            echo "$first" | cut -c1-14
            echo "$second" | cut -c1-19
        }
        rm "$fifo")");
    EXPECT_EQ(outcome.out, "{\"text\":\"2 in\"\n{\"text\":\"ans to cm\"\n");
    EXPECT_EQ(outcome.err, "");
}
#endif

TEST(EvalTests, LinesAreAnsweredInJson) {
    Outcome const outcome =
        runConsole({"eval", "--json", "--no-tokens"}, "2 in\n5 kg to m\n\n5 to\n\xFF\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.substr(outcome.out.find('\n') + 1),
              R"({"text":"5 kg to m","error":"the value is in kg (Mass) and can't be shown in m )"
              R"j((Length)","line":2})j"
              "\n"
              R"({"text":"5 to","error":"a unit, or \"?\" for all of them, is missing after )"
              R"(\"to\"","line":4,"start":4,"end":4,"suggestions":[],"hint":"",)"
              R"("corrections":[]})"
              "\n"
              R"({"error":"the line isn't UTF-8","line":5})"
              "\n");
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
