// Sessions from a pipe.

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sstream>

#include "Console/Session/Completion.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

TEST(PipedSessionTests, EveryLineIsDone) {
    Outcome const outcome =
        runConsole({}, "1 in + 1 cm\n\n  unit in \r\n2\nunit none\n9.81 m/s^2\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "1.394 in\n"
                           "  internal 3.54 cm, units in, rebuilt 1 in + 1 cm\n"
                           "expected unit: in (Length)\n"
                           "2.00 in\n"
                           "  internal 5.08 cm, units in, rebuilt 2 in\n"
                           "expected unit: none\n"
                           "9.81 m / s^2\n"
                           "  internal 981 cm / s^2, units m / s^2, rebuilt 9.81 m / s^2\n");
}

TEST(PipedSessionTests, BadLinesAreToldAndTheRestIsDone) {
    Outcome const outcome = runConsole({}, "2CM\n7/2.2\n1/0\n\xFF\nunit bogus\n2 cm");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "2.00 cm\n  internal 2 cm, units cm, rebuilt 2 cm\n");
    EXPECT_EQ(outcome.err,
              "line 1: Parse error at character 1: \"CM\" isn't a unit, a function or a constant\n"
              "  2CM\n"
              "   ^\n"
              "  did you mean cm?\n"
              "line 2: Parse error at character 3: a number can't follow the fraction \"7/2\"\n"
              "  7/2.2\n"
              "  ~~~^\n"
              "  \"7/2\" was read as a fraction; put the divisor in brackets: 7/(2.2)\n"
              "line 3: no value: a divisor is nearly zero, a number is too large, or a function "
              "isn't defined for its argument\n"
              "line 4: the line isn't UTF-8\n"
              "line 5: unit: \"bogus\" isn't a unit\n");
}

TEST(PipedSessionTests, UnitAndDisplayAreKept) {
    Outcome const outcome = runConsole({}, "unit\ndisplay\nunit cm\ndisplay in\n2.54\nunit \"\"\n"
                                           "display none\n3\nunit m/s\n2\nunit\nunit\tnone\n2\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "expected unit: none\n"
                           "display unit: none\n"
                           "expected unit: cm (Length)\n"
                           "display unit: in (Length)\n"
                           "1.00 in\n"
                           "  internal 2.54 cm, units cm, rebuilt 2.54 cm\n"
                           "expected unit: no unit\n"
                           "display unit: none\n"
                           "3.00\n"
                           "  internal 3, units none, rebuilt 3\n"
                           "expected unit: m / s (Speed)\n"
                           "2.00 m / s\n"
                           "  internal 200 cm / s, units m / s, rebuilt 2 m / s\n"
                           "expected unit: m / s (Speed)\n"
                           "expected unit: none\n"
                           "2.00\n"
                           "  internal 2, units none, rebuilt 2\n");
}

TEST(PipedSessionTests, RoundedRebuiltTextIsNotTheOneToStore) {
    EXPECT_EQ(runConsole({}, "1/128 in").out,
              "0.008 in\n"
              "  internal 0.01984375 cm, units in, rebuilt 1/64\"\n"
              "  the rebuilt text would not read back to the same value; store 1/128 in\n");
}

TEST(PipedSessionTests, SettingsAreListedWithTheirMeaning) {
    Outcome const outcome = runConsole({}, "set\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.out,
        "generalUnit                          0          length unit of new documents: 0 mm, 1 cm, "
        "2 m, 3 in, 4 ft\n"
        "generalPrecision                     3          decimals of a value\n"
        "angularPrecision                     1          decimals of a value in degrees\n"
        "scientificPrecision                  3          decimals before an exponent\n"
        "lengthDisplay                        0          0 decimal, 1 fractional, 2 feet and "
        "inches\n"
        "degreeDisplay                        0          0 decimal, 1 minutes and seconds\n"
        "compressUnits                        true       m^3 rather than m m m\n"
        "scientificNotation                   true       exponents for big and small values\n"
        "decimalPointIsFullStop               true       1.5 rather than 1,5\n"
        "displayAbbreviated                   true       cm rather than centimeter\n"
        "displaySymbol                        false      the symbol of a unit that has one\n"
        "specifiedByNode                      false      the format comes from a number as it was "
        "typed\n"
        "hideTrailingZeroes                   true       4.02 rather than 4.020\n"
        "minimumPrecision                     2          decimals kept when zeroes are hidden\n"
        "useScientificNotationAboveThreshold  9999.9999  greater values get an exponent\n"
        "useScientificNotationBelowThreshold  0.001      smaller values get an exponent\n");
}

TEST(PipedSessionTests, SettingsChangeWhatIsShownUntilTheStandardComesBack) {
    Outcome const outcome =
        runConsole({}, "set generalPrecision 5\nset HIDETRAILINGZEROES off\n2.5 cm\n"
                       "set displayAbbreviated false\nExpressions.Parse \"2.5 cm\"\n"
                       "set useScientificNotationAboveThreshold 1e2\nset generalPrecision\n"
                       "standard\n2.5 cm\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "generalPrecision 5\n"
                           "hideTrailingZeroes false\n"
                           "2.50000 cm\n"
                           "  internal 2.5 cm, units cm, rebuilt 2.5 cm\n"
                           "displayAbbreviated false\n"
                           "2.5 cm gave a parse result Success!\n"
                           "Evaluation succeeded with a result of 2.5\n"
                           "Unit Evaluation succeeded with a result of (centimeter) / (1)\n"
                           "Formatted value -> 2.50000 centimeter\n"
                           "String reconstruction produced -> 2.5 centimeter\n"
                           "useScientificNotationAboveThreshold 100\n"
                           "generalPrecision 5\n"
                           "the display settings are the factory's again\n"
                           "2.50 cm\n"
                           "  internal 2.5 cm, units cm, rebuilt 2.5 cm\n");
}

TEST(PipedSessionTests, WrongSettingsAreTold) {
    Outcome const outcome =
        runConsole({}, "set generalPrecison 4\nset nothing 1\nset compressUnits maybe\n"
                       "set generalPrecision many\nset lengthDisplay 3\nset degreeDisplay 1 x\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "line 1: there is no setting \"generalPrecison\"; did you mean generalPrecision?\n"
              "line 2: there is no setting \"nothing\"; \"set\" alone lists them\n"
              "line 3: compressUnits is true or false, not \"maybe\"\n"
              "line 4: generalPrecision is a number, not \"many\"\n"
              "line 5: lengthDisplay takes a whole number from 0 to 2\n"
              "line 6: degreeDisplay is a number, not \"1 x\"\n");
}

TEST(PipedSessionTests, ANumberOfASettingHasTheDecimalMarkOfTheUser) {
    Outcome const outcome = runConsole({}, "set useScientificNotationAboveThreshold 11,5\n"
                                           "set decimalPointIsFullStop off\n"
                                           "set useScientificNotationAboveThreshold 11,5\n12\n"
                                           "set useScientificNotationAboveThreshold 99.999\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "decimalPointIsFullStop false\n"
                           "useScientificNotationAboveThreshold 11.5\n"
                           "1.200E+01\n"
                           "  internal 12, units none, rebuilt 12\n");
    EXPECT_EQ(outcome.err, "line 1: useScientificNotationAboveThreshold is a number, not \"11,5\"\n"
                           "line 5: \"99.999\" can mean 99,999 or 99999: write one of these\n");
}

TEST(PipedSessionTests, AByteOrderMarkIsPassedOverAndAnotherEncodingRefused) {
    EXPECT_EQ(runConsole({}, "\xEF\xBB\xBFhelp units\r\n").err, "");
    Outcome const other = runConsole({}, std::string("\xFF\xFE"
                                                     "2\0\r\0\n\0"
                                                     "3\0",
                                                     10));
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.out, "");
    EXPECT_EQ(other.err, "line 1: the input is in UTF-16; only UTF-8 is read\n");
}

TEST(PipedSessionTests, TextCommandsAreRun) {
    Outcome const outcome = runConsole({}, "expressions.tokenize \"1' 9\"\"\nUnits.Lisst\n.5 cm\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "1' 9\" parsed as 1' 9foot\n"
                           "0.50 cm\n"
                           "  internal 0.5 cm, units cm, rebuilt 0.5 cm\n");
    EXPECT_EQ(outcome.err.substr(0, 56),
              "line 2: The subject area \"Units\" has no command \"Lisst\".");
}

TEST(PipedSessionTests, UnitsAreListed) {
    EXPECT_EQ(runConsole({}, "units pressure\n").out, runConsole({"units", "pressure"}).out);
    EXPECT_EQ(runConsole({}, "units parsec\n").status, 1);
}

TEST(PipedSessionTests, HelpKnowsEveryTopicAndCommand) {
    std::string const help = runConsole({}, "help\n").out;
    for (char const * const word :
         {"help [TOPIC]", "unit [UNIT]", "display [UNIT]", "set [FIELD [VALUE]]",
          "options [JOB ...]", "standard", "units [PATTERN]", "language", "quit"})
        EXPECT_NE(help.find(std::string("\n  ") + word), std::string::npos) << word;
    for (char const * const topic :
         {"expressions", "numbers", "conversions", "functions", "constants", "prefixes",
          "preferences", "documents", "commands", "unit", "set", "options", "quit"}) {
        Outcome const outcome = runConsole({}, std::string("help ") + topic + "\n");
        EXPECT_EQ(outcome.status, 0) << topic;
        EXPECT_NE(outcome.out, "") << topic;
    }
    // Text commands are told of as they are listed, alone and by their area.
    Outcome const one = runConsole({}, "help units.list\n");
    EXPECT_EQ(one.out.find("  Units.List  "), 0U) << one.out;
    EXPECT_EQ(std::count(one.out.begin(), one.out.end(), '\n'), 1);
    EXPECT_NE(runConsole({}, "help Units\n").out.find("Units.ShowComplexUnits"), std::string::npos);
    Outcome const unknown = runConsole({}, "help me\n");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.err, "line 1: there is no help on \"me\"\n");
    EXPECT_EQ(runConsole({}, "help constants\n").out,
              "  PI            3.141592653589793\n"
              "  E             2.718281828459045\n"
              "  Gravity       980.665            cm / s^2\n"
              "  SpeedOfLight  29979245800        cm / s\n");
}

// Each first column of help on expressions and numbers is an expression, or two.
TEST(PipedSessionTests, ExamplesOfHelpEvaluate) {
    for (char const * const topic : {"help expressions\n", "help numbers\n"}) {
        std::istringstream lines(runConsole({}, topic).out);
        for (std::string line; std::getline(lines, line);) {
            std::size_t begin = 2;
            std::string input;
            // The last cell is the meaning.
            for (std::size_t end; (end = line.find("  ", begin)) != line.npos;) {
                input += line.substr(begin, end - begin) + '\n';
                begin = line.find_first_not_of(' ', end);
            }
            Outcome const outcome = runConsole({}, input);
            EXPECT_EQ(outcome.status, 0) << line << '\n' << outcome.err;
            EXPECT_NE(outcome.out, "") << line;
        }
    }
}

TEST(PipedSessionTests, LanguageIsToldAndChanged) {
    EXPECT_EQ(runConsole({}, "language\n").out, "language: en; there are en, de, fr, ja\n");
    EXPECT_EQ(runConsole({"--language", "de_AT"}, "language\n").out,
              "Sprache: de_AT; es gibt en, de, fr, ja\n");
    Outcome const changed = runConsole({}, "sqrt(16)\nlanguage de\nwurzel(16)\nlanguage fr\n"
                                           "racine(16)\nlanguage en\nsqrt(16)\n");
    EXPECT_EQ(changed.err, "");
    for (char const * const rebuilt : // in the language of the moment
         {"units none, rebuilt sqrt(16)\nSprache: de;",
          "Einheiten keine, neu gebildet wurzel(16)\n",
          "unit\u00E9s aucune, reconstruite racine(16)\n", "units none, rebuilt sqrt(16)\n"})
        EXPECT_NE(changed.out.find(rebuilt), std::string::npos) << rebuilt << changed.out;
    // What is known in one language isn't in another.
    Outcome const outcome = runConsole({}, "language de\nsqrt(16)\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("Syntaxfehler"), std::string::npos) << outcome.err;
}

TEST(PipedSessionTests, UnknownLanguageIsRefused) {
    Outcome const outcome = runConsole({}, "language xx\nlanguage ../de\nlanguage dee\nlanguage\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "line 1: there is no language \"xx\"; there are en, de, fr, ja\n"
                           "line 2: there is no language \"../de\"; there are en, de, fr, ja\n"
                           "line 3: there is no language \"dee\"; did you mean de?\n");
    EXPECT_EQ(outcome.out, "language: en; there are en, de, fr, ja\n");
}

TEST(PipedSessionTests, QuitEndsAtOnce) {
    EXPECT_EQ(runConsole({}, "quit\n2\n").out, "");
    EXPECT_EQ(runConsole({}, "").out, "");
    EXPECT_EQ(runConsole({}, "").status, 0);
}

TEST(PipedSessionTests, HugeAndHostileLinesAreAnswered) {
    std::string const digits(1000000, '1');
    Outcome const outcome = runConsole(
        {}, std::string(1000000, '(') + "\n" + std::string(10000000, 'x') + "\n" +
                std::string("a\0b\n", 4) + "set " + std::string(1000000, 'x') + "\nunit " +
                std::string(1000000, 'x') + "\nhelp " + std::string(1000000, 'x') + "\n" +
                std::string(1000000, '.') + "\nUnits." + std::string(1000000, 'x') + "\n2 cm\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "2.00 cm\n  internal 2 cm, units cm, rebuilt 2 cm\n");
    EXPECT_LT(outcome.err.size(), 5000u);
}

TEST(CompletionTests, WordsAreCompletedWhereTheyCanStand) {
    Initializer::runAll();
    struct Row {
        wchar_t const * line;
        std::size_t begun;
        std::vector<std::wstring> candidates;
    };
    Row const rows[] = {
        {L"2 kilom", 5, {L"kilometer", L"kilomho"}},
        {L"options re", 2, {L"reset"}},
        {L"options set generalP", 8, {L"generalPrecision"}},
        {L"options set specifiedB", 0, {}}, // no preference
        {L"options set compressUnits ", 0, {L"true", L"false"}},
        {L"options get compressUnits ", 0, {}},
        {L"options list --", 2, {L"--json"}},
        {L"set degreeDisplay ", 0, {L"0", L"1"}},
        {L"set COMPRESSUNITS T", 1, {L"true"}},
        {L"language e", 1, {L"en"}},
        {L"tree /", 1, {L"/Json", L"/Verbose"}},
        {L"Document.Tree \"a b\" /v", 2, {L"/Verbose"}},
        {L"tree \"a /Verb", 0, {}}, // within quotes
        {L"saveas a.vnd /", 1, {L"/Force"}},
        {L"2 in /Verb", 0, {}},
        {L"opti", 4, {L"options"}},
        {L"2kilomet", 7, {L"kilometer"}},
        {L"2 KILOME", 6, {L"kilometer", L"kiloMetersPerSecond"}},
        {L"1 + (2 naut", 4, {L"nauticalMile"}},
        {L"sq", 2, {L"sqrt"}},
        {L"2 * Spee", 4, {L"SpeedOfLight"}},
        {L"un", 2, {L"unit", L"units"}},
        {L"Units.",
         6,
         {L"Units.List", L"Units.MakeForMagnitude", L"Units.ShowComplexUnits",
          L"Units.DisplayInternalUnit"}},
        {L"units.l", 7, {L"Units.List"}},
        {L"set minimum", 7, {L"minimumPrecision"}},
        {L"set  SCI", 3, {L"scientificPrecision", L"scientificNotation"}},
        {L"help fun", 3, {L"functions"}},
        {L"unit inc", 3, {L"inch"}},
        {L"2 + ", 0, {}},
        {L"2 qqq", 3, {}},
        {L"2 * an", 2, {L"ans"}},
        {L"2 + 3", 0, {}},
    };
    for (Row const & row : rows) {
        Completion const completion = completeSessionLine(row.line);
        std::vector<std::wstring> texts;
        for (Completion::Candidate const & c : completion.candidates) texts.push_back(c.text);
        EXPECT_EQ(texts, row.candidates) << Text::toUtf8(row.line);
        if (!texts.empty()) {
            EXPECT_EQ(completion.begun, row.begun) << Text::toUtf8(row.line);
        }
    }
}

#ifndef _WIN32 // where the terminal completes nothing
// A directory of its own is the working directory meanwhile.
class FileNameTests : public testing::Test {
protected:
    FileNameTests() : m_before(std::filesystem::current_path()) {
        Initializer::runAll();
        std::filesystem::current_path(m_directory.path());
        for (char const * const name : {"beam.vnd", "bolt.vnd", "two words.vnd", ".hidden.vnd",
                                        "quote\"d.vnd", "\xC3\xA4.vnd"})
            std::ofstream(m_directory.path() / name);
        std::filesystem::create_directory("parts");
        std::ofstream("parts/nut.vnd");
    }
    ~FileNameTests() override { std::filesystem::current_path(m_before); }

    static std::vector<std::wstring> offered(std::wstring const & line) {
        Completion const completion = completeSessionLine(line);
        std::vector<std::wstring> texts;
        for (Completion::Candidate const & each : completion.candidates)
            texts.push_back(line.substr(0, line.size() - completion.begun) + each.text +
                            (completion.candidates.size() == 1 ? each.after : L""));
        return texts;
    }

    Testing::TemporaryDirectory const m_directory;
    std::filesystem::path const m_before;
};

TEST_F(FileNameTests, AreOfferedWhereACommandTakesAFile) {
    using Texts = std::vector<std::wstring>;
    EXPECT_EQ(offered(L"open b"), (Texts{L"open beam.vnd", L"open bolt.vnd"}));
    EXPECT_EQ(offered(L"open be"), Texts{L"open beam.vnd"});
    EXPECT_EQ(offered(L"  Document.SaveAs  bo"), Texts{L"  Document.SaveAs  bolt.vnd"});
    EXPECT_EQ(offered(L"check bo"), Texts{L"check bolt.vnd"});
    EXPECT_EQ(offered(L"open par"), Texts{L"open parts/"});
    EXPECT_EQ(offered(L"open parts/"), Texts{L"open parts/nut.vnd"});
    EXPECT_EQ(offered(L"open ./bea"), Texts{L"open ./beam.vnd"});
    EXPECT_EQ(offered(L"open \u00E4"), Texts{L"open \u00E4.vnd"});
    EXPECT_EQ(offered(L"open .h"), Texts{L"open .hidden.vnd"});
    EXPECT_EQ(offered(L"open ").size(), 6u); // the hidden one isn't
    EXPECT_EQ(offered(L"open nothing"), Texts{});
    EXPECT_EQ(offered(L"open nowhere/x"), Texts{});
    EXPECT_EQ(offered(L"open beam.vnd b"), Texts{}); // another parameter
    EXPECT_EQ(offered(L"open beam.vnd /f"), Texts{L"open beam.vnd /Force"});
}

// A line with the candidate means the file.
TEST_F(FileNameTests, StandInQuotesWhereTheyHaveTo) {
    using Texts = std::vector<std::wstring>;
    EXPECT_EQ(offered(L"open tw"), Texts{L"open \"two words.vnd\""});
    EXPECT_EQ(offered(L"open \"two w"), Texts{L"open \"two words.vnd\""});
    EXPECT_EQ(offered(L"open \"be"), Texts{L"open \"beam.vnd\""});
    EXPECT_EQ(offered(L"open \"beam.vnd\""), Texts{});
    EXPECT_EQ(offered(L"open \"quote"), Texts{L"open \"quote\\\"d.vnd\""});
    EXPECT_EQ(offered(L"open \"quote\\\""), Texts{L"open \"quote\\\"d.vnd\""});
    std::wstring const here = Text::fromUtf8(Testing::utf8(m_directory.path()));
    EXPECT_EQ(offered(L"open " + here + L"/be"), Texts{L"open \"" + here + L"/beam.vnd\""});
    ::setenv("HOME", Testing::utf8(m_directory.path()).c_str(), 1);
    EXPECT_EQ(offered(L"open ~").size(), 6u); // what is in the directory
    EXPECT_EQ(offered(L"open ~/be"), Texts{L"open \"" + here + L"/beam.vnd\""});
    EXPECT_EQ(offered(L"open \"~/two"), Texts{L"open \"" + here + L"/two words.vnd\""});
    ASSERT_EQ(runConsole({"document", "--new", "real one.vnd"}).status, 0);
    std::string const line = Text::toUtf8(offered(L"open rea").at(0));
    EXPECT_EQ(runConsole({}, line + "\nquit\n").status, 0) << line;
}

#endif

TEST(ProgressTests, NothingIsCountedElsewhere) {
    Testing::TemporaryFile const file("{\"text\":\"2\"}\n");
    EXPECT_EQ(runConsole({"batch", file.text()}).err, "");
}

} // namespace

} // namespace Vn::Console::Tests
