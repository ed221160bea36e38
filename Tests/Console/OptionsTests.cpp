// The preferences in the console.

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Tests/Base/TestOptions.h"
#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

namespace fs = std::filesystem;
using Testing::utf8;

constexpr char c_defaults[] =
    "  generalUnit                          0          Default units for new documents: mm\n"
    "  generalPrecision                     3          General precision: 0.123\n"
    "  angularPrecision                     1          Angular precision: 0.1\n"
    "  scientificPrecision                  3          Scientific notation precision: 1.123E+04\n"
    "  lengthDisplay                        0          Foot and inch foot display format: Decimal "
    "(e.g. 1.5 in)\n"
    "  degreeDisplay                        0          Degree display format: Decimal (e.g. 39.25 "
    "deg)\n"
    "  compressUnits                        ON         Compress Units\n"
    "  decimalPointIsFullStop               ON         Decimal point display: 1.500\n"
    "  displayAbbreviated                   ON         Display abbreviations for units\n"
    "  displaySymbol                        OFF        Display symbols for units\n"
    "  scientificNotation                   ON         Use scientific notation for big and small "
    "values\n"
    "  useScientificNotationAboveThreshold  9999.9999  Use scientific notation above\n"
    "  useScientificNotationBelowThreshold  0.001      Use scientific notation below\n"
    "  hideTrailingZeroes                   ON         Hide trailing zeroes\n"
    "  minimumPrecision                     2          Minimum precision when hiding trailing "
    "zeroes: 4.00\n";

// What the marks and blanks in front of rows are for isn't asked.
std::string unmarked(std::string text) {
    std::string result;
    bool atStart = true;
    for (char const c : text) {
        if (!(atStart && (c == ' ' || c == '*'))) result += c;
        atStart = c == '\n' || (atStart && (c == ' ' || c == '*'));
    }
    return result;
}

class OptionsTests : public testing::Test {
protected:
    Outcome run(std::vector<std::string> arguments, std::string const & input = {}) const {
        arguments.insert(arguments.begin(), {"--options", utf8(m_directory.path())});
        return runConsole(arguments, input);
    }
    // Runs what must go well, and gives what it prints.
    std::string good(std::vector<std::string> const & arguments,
                     std::string const & input = {}) const {
        Outcome const outcome = run(arguments, input);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
    // Runs what must go wrong, and gives what it says of that.
    std::string bad(std::vector<std::string> const & arguments, int status = 1) const {
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.out, "");
        return outcome.err;
    }
    std::string formatted(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "eval");
        std::string const out = good(arguments);
        std::size_t const begin = out.find("formatted  ") + 11;
        return out.substr(begin, out.find('\n') - begin);
    }
    fs::path file() const { return m_directory.path() / "GlobalOptions.xml"; }
    bool has(std::string const & text) const {
        return Testing::contentOf(file()).find(text) != std::string::npos;
    }

    Testing::TemporaryDirectory const m_directory;
};

TEST_F(OptionsTests, TheListMarksWhatIsNotTheDefault) {
    EXPECT_EQ(unmarked(good({"options"})), unmarked(c_defaults));
    EXPECT_EQ(good({"options"}).find('*'), std::string::npos);
    EXPECT_FALSE(fs::exists(file())) << "nothing is made by looking";
    good({"options", "set", "lengthDisplay", "fractional"});
    std::string const list = good({"options", "list"});
    EXPECT_NE(list.find("*  lengthDisplay                        1          Foot and inch foot "
                        "display format: Fractional (e.g. 1 1/2\")\n"),
              std::string::npos)
        << list;
    EXPECT_EQ(std::count(list.begin(), list.end(), '*'), 1);
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 15);
}

TEST_F(OptionsTests, AListTakesAPattern) {
    std::string const list = good({"options", "list", "PRECISION"});
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 4);
    EXPECT_EQ(std::count_if(list.begin(), list.end(), [](char c) { return c == '*'; }), 0);
    EXPECT_NE(good({"options", "list", "UnitDegree"}).find("degreeDisplay"), std::string::npos);
    EXPECT_NE(good({"options", "list", "trailing"}).find("hideTrailingZeroes"), std::string::npos);
    EXPECT_EQ(bad({"options", "list", "nothing"}),
              "vnconsole: no preference matches \"nothing\"\n");
}

TEST_F(OptionsTests, PreferencesChangeWhatEvalShows) {
    EXPECT_EQ(formatted({"1.5 in"}), "1.50 in");
    EXPECT_EQ(formatted({"2.5 cm"}), "2.50 cm");
    good({"options", "set", "lengthDisplay", "fractional"});
    good({"options", "set", "UnitDecimalPointIsFullStopId", "OFF"});
    EXPECT_EQ(formatted({"1.5 in"}), "1 1/2\"");
    EXPECT_EQ(formatted({"2.5 cm"}), "2,50 cm");
    EXPECT_EQ(formatted({"1.5 in", "--standard"}), "1.50 in");
    EXPECT_EQ(formatted({"2.5 cm", "--standard"}), "2.50 cm");
    EXPECT_EQ(Testing::contentOf(file()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Options>\n"
              "  <OptionGroup Id=\"UnitDisplaySettingsOptionGroup\">\n"
              "    <Option Id=\"UnitLengthDisplayId\" Value=\"1\"/>\n"
              "    <Option Id=\"UnitDecimalPointIsFullStopId\" Value=\"0\"/>\n"
              "  </OptionGroup>\n"
              "</Options>\n");
    // Batch and self-test have none.
    EXPECT_NE(good({"batch"}, "{\"id\":1,\"text\":\"2.5 cm\"}\n").find("\"2.50 cm\""),
              std::string::npos);
    EXPECT_EQ(run({"self-test"}).status, 0);
}

TEST_F(OptionsTests, TenThousandIsAboveTheUsersThresholdOnly) {
    EXPECT_EQ(formatted({"10000"}), "1.000E+04");
    EXPECT_EQ(formatted({"10000", "--standard"}), "10000.00");
}

TEST_F(OptionsTests, AnOptionIsNamedInAnyCaseByItsIdOrItsField) {
    for (char const * const name : {"generalPrecision", "GENERALPRECISION",
                                    "UnitGeneralPrecisionId", "unitgeneralprecisionid"}) {
        std::string const out = good({"options", "get", name});
        EXPECT_NE(out.find("generalPrecision  3  General precision: 0.123\n"), std::string::npos);
    }
    EXPECT_EQ(bad({"options", "get", "generalPrecison"}),
              "vnconsole: there is no preference \"generalPrecison\"; did you mean "
              "generalPrecision?\n");
    EXPECT_EQ(bad({"options", "set", "UnitLenghtDisplayId", "1"}),
              "vnconsole: there is no preference \"UnitLenghtDisplayId\"; did you mean "
              "UnitLengthDisplayId?\n");
    EXPECT_EQ(bad({"options", "reset", "x"}),
              "vnconsole: there is no preference \"x\"; \"options list\" lists them\n");
}

TEST_F(OptionsTests, AValueIsAsItIsStoredOrAsAChoiceShowsIt) {
    struct Row {
        char const * name;
        char const * value;
        char const * id;
        char const * stored;
    };
    constexpr Row c_rows[] = {
        {"generalUnit", "ft", "UnitGeneralUnitsId", "4"},
        {"generalUnit", "2", "UnitGeneralUnitsId", "2"},
        {"lengthDisplay", "fractional", "UnitLengthDisplayId", "1"},
        {"lengthDisplay", "Architectural (e.g. 0'-1 1/2\")", "UnitLengthDisplayId", "2"},
        {"degreeDisplay", "minutes and seconds", "UnitDegreeDisplayId", "1"},
        {"decimalPointIsFullStop", "1,500", "UnitDecimalPointIsFullStopId", "0"},
        {"decimalPointIsFullStop", "1.500", "UnitDecimalPointIsFullStopId", "1"},
        {"decimalPointIsFullStop", "off", "UnitDecimalPointIsFullStopId", "0"},
        {"compressUnits", "false", "UnitCompressUnitsId", "0"},
        {"generalPrecision", "0.12", "UnitGeneralPrecisionId", "2"},
        {"generalPrecision", "12", "UnitGeneralPrecisionId", "12"},
        {"minimumPrecision", "4", "UnitDisplayMinimumPrecisionId", "4"},
        {"minimumPrecision", "4.000", "UnitDisplayMinimumPrecisionId", "3"},
        {"useScientificNotationAboveThreshold", "1E6",
         "UnitDisplayscientificNotationAboveThresholdId", "1000000"},
        {"useScientificNotationBelowThreshold", "0,25",
         "UnitDisplayscientificNotationBelowThresholdId", "0.25"},
    };
    for (Row const & row : c_rows) {
        good({"options", "set", row.name, row.value});
        EXPECT_TRUE(has(Testing::optionElement(row.id, row.stored)))
            << row.name << ' ' << row.value;
    }
    EXPECT_NE(good({"options", "set", "degreeDisplay", "Minutes", "and", "Seconds"})
                  .find("degreeDisplay  1  "),
              std::string::npos)
        << "in several words, too";
}

TEST_F(OptionsTests, AnotherValueIsRefusedWithTheChoices) {
    EXPECT_EQ(bad({"options", "set", "lengthDisplay", "roman"}),
              "vnconsole: lengthDisplay takes a whole number from 0 to 2, not \"roman\"; the "
              "choices are\n"
              "  0  Decimal (e.g. 1.5 in)\n"
              "  1  Fractional (e.g. 1 1/2\")\n"
              "  2  Architectural (e.g. 0'-1 1/2\")\n");
    EXPECT_EQ(bad({"options", "set", "compressUnits", "2"}),
              "vnconsole: compressUnits takes ON or OFF, not \"2\"\n");
    for (char const * const value : {"3", "-1", "1.0", "", "99999999999"})
        EXPECT_NE(bad({"options", "--", "set", "lengthDisplay", value}), "");
    for (char const * const value : {"70000", "5.0", "abc"})
        EXPECT_NE(bad({"options", "set", "generalPrecision", value}), "");
    for (char const * const value : {"inf", "1,234.5", "1E999"})
        EXPECT_NE(bad({"options", "set", "useScientificNotationAboveThreshold", value}), "");
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(OptionsTests, ResetTakesOneOrAllBack) {
    good({"options", "set", "lengthDisplay", "1"});
    good({"options", "set", "generalPrecision", "5"});
    good({"options", "set", "compressUnits", "OFF"});
    EXPECT_NE(good({"options", "reset", "lengthDisplay"}).find("lengthDisplay  0"),
              std::string::npos);
    EXPECT_EQ(formatted({"1.5 in"}), "1.50 in");
    std::string const list = good({"options"});
    EXPECT_EQ(std::count(list.begin(), list.end(), '*'), 2);
    EXPECT_EQ(unmarked(good({"options", "reset"})), unmarked(c_defaults));
    EXPECT_EQ(good({"options"}).find('*'), std::string::npos);
}

TEST_F(OptionsTests, PathTellsTheFile) {
    std::string const out = good({"options", "path"});
    EXPECT_EQ(fs::path(std::u8string(out.begin(), out.end() - 1)), file());
    nlohmann::json const json = nlohmann::json::parse(good({"options", "path", "--json"}));
    EXPECT_EQ(json["path"].get<std::string>() + '\n', out);
    EXPECT_NE(json["serverPath"].get<std::string>().find("ServerOptions.xml"), std::string::npos);
}

TEST_F(OptionsTests, JsonTellsAll) {
    good({"options", "set", "lengthDisplay", "1"});
    std::string const out = good({"options", "--json"});
    std::istringstream lines(out);
    std::vector<nlohmann::json> objects;
    for (std::string line; std::getline(lines, line);)
        objects.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(objects.size(), 15U);
    nlohmann::json const & length = objects[4];
    EXPECT_EQ(length["name"], "lengthDisplay");
    EXPECT_EQ(length["id"], "UnitLengthDisplayId");
    EXPECT_EQ(length["value"], 1);
    EXPECT_EQ(length["text"], "1");
    EXPECT_EQ(length["choice"], "Fractional (e.g. 1 1/2\")");
    EXPECT_EQ(length["isDefault"], false);
    EXPECT_EQ(length["choices"].size(), 3U);
    EXPECT_EQ(length["choices"][2]["value"], "2");
    EXPECT_EQ(objects[6]["value"], true);
    EXPECT_EQ(objects[6]["text"], "ON");
    EXPECT_EQ(objects[6]["isDefault"], true);
    EXPECT_EQ(objects[11]["value"], 9999.9999);
    EXPECT_EQ(nlohmann::json::parse(good({"options", "get", "lengthDisplay", "--json"})), length);
}

TEST_F(OptionsTests, AnythingElseIsNotUnderstood) {
    for (std::vector<std::string> const & arguments :
         {std::vector<std::string>{"options", "list", "a", "b"},
          {"options", "set"},
          {"options", "set", "lengthDisplay"},
          {"options", "get"},
          {"options", "get", "a", "b"},
          {"options", "path", "x"},
          {"options", "show"}})
        EXPECT_NE(bad(arguments, 2).find("options set ID VALUE"), std::string::npos);
}

TEST_F(OptionsTests, ADamagedFileIsToldInOneLineAndChangesNoStatus) {
    Testing::write(file(), "<Options><Opt");
    for (std::vector<std::string> const & arguments : {std::vector<std::string>{"eval", "2.5 cm"},
                                                       {"units", "pascal"},
                                                       {"options", "list"},
                                                       {}}) {
        Outcome const outcome = run(arguments, "2.5 cm\n");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.err.find("damaged"), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find("GlobalOptions.xml"), std::string::npos);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    }
    EXPECT_EQ(Testing::contentOf(file()), "<Options><Opt");
    for (std::vector<std::string> const & arguments :
         {std::vector<std::string>{"eval", "2.5 cm", "--standard"},
          {"batch"},
          {"self-test"},
          {"tour"},
          {"--standard"}})
        EXPECT_EQ(run(arguments).err, "");
    Outcome const set = run({"options", "set", "lengthDisplay", "1"});
    EXPECT_EQ(set.status, 0);
    EXPECT_TRUE(fs::exists(m_directory.path() / "GlobalOptions.xml.damaged"));
    EXPECT_EQ(run({"eval", "2.5 cm"}).err, "");
}

TEST_F(OptionsTests, AnOptionThatCannotBeReadIsToldAndSetAnew) {
    Testing::write(file(), "<Options><OptionGroup Id='UnitDisplaySettingsOptionGroup'>" +
                               Testing::optionElement("UnitGeneralPrecisionId", "many") +
                               Testing::optionElement("UnitLengthDisplayId", "1") +
                               "</OptionGroup></Options>");
    Outcome const outcome = run({"eval", "1.5 in"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "vnconsole: cannot read the option 'UnitGeneralPrecisionId': damaged: "
                           "\"many\" isn't a whole number\n");
    EXPECT_NE(outcome.out.find("1 1/2\""), std::string::npos) << "the others are read";
    EXPECT_EQ(run({"options", "set", "generalPrecision", "3"}).status, 0);
    EXPECT_EQ(run({"eval", "1.5 in"}).err, "");
}

TEST_F(OptionsTests, WhatCannotBeSavedIsTold) {
    fs::create_directory(file());
    Outcome const outcome = run({"options", "set", "lengthDisplay", "1"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("it isn't a file"), std::string::npos) << outcome.err;
}

TEST_F(OptionsTests, ASessionUsesAndChangesThem) {
    EXPECT_EQ(
        good({}, "options set lengthDisplay fractional\n1.5 in\noptions get lengthDisplay\n"),
        "*  lengthDisplay  1  Foot and inch foot display format: Fractional (e.g. 1 1/2\")\n"
        "1 1/2\"\n"
        "  internal 3.81 cm, units in, rebuilt 1.5 in\n"
        "*  lengthDisplay  1  Foot and inch foot display format: Fractional (e.g. 1 1/2\")\n");
    EXPECT_NE(good({}, "1.5 in\n").find("1 1/2\"\n"), std::string::npos);
    EXPECT_NE(good({"--standard"}, "1.5 in\n").find("1.50 in\n"), std::string::npos);
    EXPECT_EQ(run({}, "options set lengthDisplay x\n").status, 1);
    EXPECT_EQ(run({}, "options frobnicate\n").status, 1);
}

// The record is written whole, but what the session has set stays.
TEST_F(OptionsTests, WhatASessionSetSurvivesAChangeOfSomethingElse) {
    EXPECT_EQ(unmarked(good({}, "set generalPrecision 5\nset minimumPrecision 5\n"
                                "options set decimalPointIsFullStop OFF\n2.5 cm\n"
                                "options set generalPrecision 1\n2.5 cm\n")),
              unmarked("generalPrecision 5\n"
                       "minimumPrecision 5\n"
                       "*  decimalPointIsFullStop  OFF  Decimal point display: 1,500\n"
                       "2,50000 cm\n"
                       "internal 2,5 cm, units cm, rebuilt 2,5 cm\n"
                       "*  generalPrecision  1  General precision: 0.1\n"
                       "2,5 cm\n"
                       "internal 2,5 cm, units cm, rebuilt 2,5 cm\n"));
    // So do the factory settings that it asked for.
    std::string const out = good({}, "standard\noptions set displayAbbreviated OFF\n2.5 cm\n");
    EXPECT_NE(out.find("2.50 centimeter\n"), std::string::npos) << out;
}

TEST_F(OptionsTests, SessionsAndCommandsShareTheFile) {
    std::string const out = good({}, "options set lengthDisplay 1\noptions list length --json\n");
    EXPECT_NE(out.find("\"value\":1"), std::string::npos) << out;
    EXPECT_NE(good({"options", "get", "lengthDisplay"}).find("lengthDisplay  1"),
              std::string::npos);
}

TEST_F(OptionsTests, WordsAreInTheUsersLanguage) {
    std::string const out = good({"--language", "de", "options", "set", "lengthDisplay", "bruch"});
    EXPECT_NE(out.find("Bruch (z. B. 1 1/2\")"), std::string::npos) << out;
}

#ifndef _WIN32 // where the system tells the place, whatever the environment says

TEST_F(OptionsTests, TheEnvironmentTellsThePlace) {
    std::string const shell = "XDG_CONFIG_HOME='" + utf8(m_directory.path()) + "' \"$VNCONSOLE\" ";
    EXPECT_EQ(runShell(shell + "options path").out,
              utf8(m_directory.path() / "VnCommonData10" / "GlobalOptions.xml") + '\n');
    EXPECT_EQ(runShell(shell + "options set lengthDisplay 1").status, 0);
    EXPECT_TRUE(fs::exists(m_directory.path() / "VnCommonData10" / "GlobalOptions.xml"));
    EXPECT_NE(runShell(shell + "eval '1.5 in'").out.find("1 1/2\""), std::string::npos);
    std::string const home =
        "XDG_CONFIG_HOME= HOME='" + utf8(m_directory.path()) + "' \"$VNCONSOLE\" ";
    EXPECT_EQ(runShell(home + "options path").out,
              utf8(m_directory.path() / ".config" / "VnCommonData10" / "GlobalOptions.xml") + '\n');
}

#endif

} // namespace

} // namespace Vn::Console::Tests
