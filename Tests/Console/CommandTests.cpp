// Every subcommand but eval and batch, and the command line itself.

#include <algorithm>
#include <gtest/gtest.h>

#include "Tests/Support/Process.h"

namespace Vn::Console::Tests {

namespace {

TEST(TextCommandTests, TextIsShownWithPlainLineEnds) {
    Outcome const outcome =
        runConsole({"command", "Expressions.Parse \"3 m + 4 ft\" m /ValueOnly"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "3 m + 4 ft gave a parse result Success!\n"
                           "Evaluation succeeded with a result of 421.92\n"
                           "Unit Evaluation succeeded with a result of (meter) / (1)\n"
                           "Formatted value -> 4.219\n"
                           "String reconstruction produced -> 3 + 4\n");
}

TEST(TextCommandTests, WordsOfTheShellAreParameters) {
    EXPECT_EQ(runConsole({"command", "Expressions.Parse", "3 m + 4 ft", "m", "/ValueOnly"}).out,
              runConsole({"command", "Expressions.Parse \"3 m + 4 ft\" m /ValueOnly"}).out);
    EXPECT_EQ(runConsole({"command", "Expressions.Tokenize", "1' 9\""}).out,
              "1' 9\" parsed as 1' 9foot\n");
}

TEST(TextCommandTests, StatusOfTheCommandIsTheExitStatus) {
    Outcome const outcome = runConsole({"command", "Expressions.Parse"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "You need to specify an expression as a parameter and may need to use "
                           "quotes to get a single string\n");
}

TEST(TextCommandTests, UnknownCommandIsTold) {
    Outcome const outcome = runConsole({"command", "Units.Lisst"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "The subject area \"Units\" has no command \"Lisst\". Did you mean Units.List? Its "
              "commands are: Units.List, Units.MakeForMagnitude, Units.ShowComplexUnits, "
              "Units.DisplayInternalUnit.\n");
}

TEST(TextCommandTests, NameAndFlagsMayBeInAnyCase) {
    Outcome const outcome = runConsole({"command", "units.list /VERBOSE"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.substr(0, 10), "There are ");
}

TEST(TextCommandTests, WithoutACommandAllAreListed) {
    Outcome const outcome = runConsole({"command"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.out,
        "Expressions: Commands that operate on expression\n"
        "  Expressions.Parse     [/UnitOnly] [/ValueOnly] <Expression> [ExpectedUnit] "
        "[DisplayUnit] Parses and evaluates the passed expression\n"
        "  Expressions.Tokenize  <Expression> Parses the passed expressions into tokens - the "
        "first step on the parsing process\n"
        "\n"
        "Units: Commands that operate on the Unit subsystem\n"
        "  Units.List                 [/Verbose] Lists all the simple units in Vantor\n"
        "  Units.MakeForMagnitude     [MagnitudePower] Makes simple units for the specified "
        "magnitude\n"
        "  Units.ShowComplexUnits     Makes and displays complex units for all the simple units in "
        "Vantor\n"
        "  Units.DisplayInternalUnit  [/UnitOnly] [/ValueOnly] Displays the internal unit as a "
        "value for all the units\n"
        "\n"
        "Document: Commands that keep a document: its file, its tree and its history\n"
        "  Document.New      [/Force] Makes a new document in place of the one that is open\n"
        "  Document.Show     <Path> [Member] [/Json] Lists the members of an entity with their "
        "values, or shows one value\n"
        "  Document.Set      <Path> <Member> <Value> Gives a member of an entity a value\n"
        "  Document.Open     <File> [/Force] Opens a document in place of the one that is open\n"
        "  Document.Save     Saves the document to its file\n"
        "  Document.SaveAs   <File> [/Force] Saves the document to another file, which becomes its "
        "own\n"
        "  Document.Tree     [Path] [/Verbose] [/Json] Lists the entities, or those at a path and "
        "below "
        "it\n"
        "  Document.Picture  <File> [view <View> | from <Direction>] [size <Width>x<Height>] "
        "[/NoBackground] Draws the document to a PNG file, as a view shows it or from a direction\n"
        "  Document.Undo     Takes the last change back\n"
        "  Document.Redo     Makes the change again that was taken back last\n"
        "  Document.History  Lists the changes, with a mark where the document stands\n"
        "  Document.Check    [File] Looks for damage in a file, without opening it\n"
        "\n"
        "Groups: Commands that change the groups of the document\n"
        "  Groups.Make    [Parent] [/Custom] Makes a group in a group, or in the root group; with "
        "/Custom one to hold the user's own groups\n"
        "  Groups.Add     <Parent> [Count] Adds entities to a group\n"
        "  Groups.Remove  <Path> Takes an entity out of its group\n"
        "  Groups.Move    <Path> before|after|into <Path> Moves an entity before or after another, "
        "or to the end of a group\n"
        "  Groups.Delete  <Path> Deletes a group with everything below it\n"
        "\n"
        "UnitSystems: Commands that change the units of the document\n"
        "  UnitSystems.Make          <Name> <Id> mks|cgs|imperial|empty Makes a unit system, with "
        "the units that are usual in one of three, or without\n"
        "  UnitSystems.List          [/Json] Lists the unit systems of the document\n"
        "  UnitSystems.ChoiceById    <Id> <Key> <Unit> [Name] Has a unit system use a unit under a "
        "key, such as ModelingLength\n"
        "  UnitSystems.Choice        <Id> <Unit> [Name] Has a unit system use a unit for "
        "quantities of its kind\n"
        "  UnitSystems.Change        <Id> <Choice> <Unit> Gives a choice of a unit system another "
        "unit of the same dimension; the choice is its number, its kind or its key\n"
        "  UnitSystems.Show          <Id> [/Json] Lists the choices of a unit system: number, kind "
        "or key, unit, stored text, name\n"
        "  UnitSystems.Activate      <Id> Has the document show its values in the units of a unit "
        "system\n"
        "  UnitSystems.Deactivate    Leaves the document without an active unit system\n"
        "  UnitSystems.Complete      <Id> mks|cgs|imperial|common Adds units for the kinds that a "
        "unit system has none for yet\n"
        "  UnitSystems.RemoveChoice  <Id> <Choice> Takes a choice out of a unit system, by its "
        "number, its kind or its key\n"
        "  UnitSystems.Remove        <Id> Takes a unit system out of the document\n"
        "\n"
        "Settings: Commands that show and change the settings of the document\n"
        "  Settings.List       [/Json] Lists the settings of the document: name, value, default, "
        "and what was changed\n"
        "  Settings.Set        <Name> <Value> Gives a setting a value: a length, a point such as "
        "(1 in, 0, 2 cm), a direction such as (0, 1, 0), a number, on or off\n"
        "  Settings.Reset      [Name] Gives a setting its default, or all of them theirs\n"
        "  Settings.ResetAxes  Gives front and up the values of the default axes of the document\n"
        "\n"
        "Views: Commands that keep the named views of the document\n"
        "  Views.List         [/Json] Lists the named views: name, camera, and which are built in "
        "and fixed\n"
        "  Views.New          [Name] [from <View>] [position <Point>] [target <Point>] [up "
        "<Direction>] Makes a view like another, or like the home camera, with a position, target "
        "or up vector of its own\n"
        "  Views.Update       <View> [from <View>] [position <Point>] [target <Point>] [up "
        "<Direction>] Gives a view the camera of another, or another position, target or up "
        "vector\n"
        "  Views.Rename       <View> <Name> Renames a view, with a number after the name if that "
        "is taken\n"
        "  Views.Move         <View>... before|after <View> Moves views next to another, one by "
        "one\n"
        "  Views.Delete       <View> [/Force] Deletes a view; one that is built in only with "
        "/Force\n"
        "  Views.Synchronize  Has the built-in views follow the axes and the home camera of the "
        "settings\n"
        "  Views.Restore      [View] Makes a built-in view that was deleted, or all of those\n");
}

TEST(UnitsTests, TableIsAligned) {
    Outcome const outcome = runConsole({"units", "LENGTH"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "name          abbreviation  symbol  kind    one is       prefixes\n"
                           "meter         m                     Length  100 cm       yes\n"
                           "micron        micron        \u00B5       Length  1e-04 cm     no\n"
                           "inch          in            \"       Length  2.54 cm      no\n"
                           "foot          ft                    Length  30.48 cm     no\n"
                           "yard          yd                    Length  91.44 cm     no\n"
                           "mile          mi                    Length  160934.4 cm  no\n"
                           "nauticalMile  nauticalMile          Length  185200 cm    no\n"
                           "mil           mil                   Length  0.00254 cm   no\n");
}

TEST(UnitsTests, PatternIsFoundInEveryColumnOfText) {
    struct Row {
        char const * pattern;
        char const * line;
    };
    Row const rows[] = {
        {"celsi", "celsius  C                     Temperature  274.16 K  no\n"},
        {"HP", "horsepower  hp                    Power  7457000 cm^2 kg / s^3  no\n"},
        {"\u00B0", "degree  deg           \u00B0       Angle  0.017453292519943295 rad  no\n"},
        {"solidangle", "steradian  sr                    SolidAngle  1       yes\n"},
    };
    for (Row const & row : rows) {
        Outcome const outcome = runConsole({"units", row.pattern});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out.substr(outcome.out.find('\n') + 1), row.line);
    }
}

TEST(UnitsTests, WithoutAPatternAllSeventyOneAreListed) {
    Outcome const outcome = runConsole({"units"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 72);
}

TEST(UnitsTests, JsonIsOneObjectALine) {
    Outcome const outcome = runConsole({"units", "--json", "pascal"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              R"({"name":"pascal","abbreviation":"Pa","symbol":"","kind":"Pressure","one":0.01,)"
              R"j("internalUnit":"kg / (cm s^2)","prefixes":true})j"
              "\n");
}

TEST(UnitsTests, NoMatchIsTold) {
    Outcome const outcome = runConsole({"units", "parsec"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vnconsole: no unit matches \"parsec\"\n");
}

TEST(SelfTestTests, BothTablesOfWorkedExpressionsPass) {
    Outcome const outcome = runConsole({"self-test"});
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("SmokeTest basicExpressionTests: passed, "), std::string::npos);
    EXPECT_NE(outcome.out.find("  266 rows, each rebuilt text read again\n"), std::string::npos);
    EXPECT_NE(outcome.out.find("SmokeTest unitDisplaySettingsTests: passed, "), std::string::npos);
    EXPECT_NE(outcome.out.find("  42 rows and 3 control rows\n"), std::string::npos);
    EXPECT_NE(outcome.out.find(" assertions, 0 failures\n"), std::string::npos);
}

TEST(SelfTestTests, OneGroupCanBeRun) {
    std::string const all = runConsole({"self-test"}).out;
    for (char const * const group : {"SmokeTest", "VantorCore"}) {
        Outcome const outcome = runConsole({"self-test", group});
        EXPECT_EQ(outcome.status, 0) << group;
        // The last line counts those of the group.
        std::string const checks =
            outcome.out.substr(0, outcome.out.rfind('\n', outcome.out.size() - 2) + 1);
        EXPECT_EQ(checks.rfind(group, 0), 0U) << checks;
        EXPECT_NE(all.find(checks), std::string::npos) << checks;
        EXPECT_LT(checks.size(), all.size());
    }
}

TEST(SelfTestTests, UnknownGroupIsTold) {
    Outcome const outcome = runConsole({"self-test", "Nope"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "vnconsole: there is no group \"Nope\" of self-checks; the groups are: VantorCore "
              "SmokeTest\n");
}

TEST(CommandLineTests, VersionIsThatOfTheProject) {
    Outcome const outcome = runConsole({"--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "vnconsole " VN_CONSOLE_VERSION "\n");
}

TEST(CommandLineTests, HelpHasExamples) {
    Outcome const outcome = runConsole({"--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    for (char const * const text :
         {"eval", "units", "command", "batch", "document", "self-test", "tour", "--language TAG",
          "Examples:\n", "vnconsole eval '1 in + 1 cm' --unit cm\n", "Exit status: 0 good"})
        EXPECT_NE(outcome.out.find(text), std::string::npos) << text;
}

TEST(CommandLineTests, UsageErrorsHaveStatusTwo) {
    struct Row {
        std::vector<std::string> arguments;
        char const * err;
    };
    std::string const run = "Run with --help for more information.\n";
    Row const rows[] = {
        {{"frobnicate"}, "The following argument was not expected: frobnicate\n"},
        {{"eval", "2", "--precision"}, "--precision: 1 required N missing\n"},
        {{"eval", "2", "--frobnicate"}, "The following argument was not expected: --frobnicate\n"},
        {{"eval", "2", "--unit"}, "--unit: 1 required UNIT missing\n"},
        {{"units", "a", "b"}, "The following argument was not expected: b\n"},
    };
    for (Row const & row : rows) {
        Outcome const outcome = runConsole(row.arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, row.err + run);
    }
}

#ifndef _WIN32 // where arguments are wide, and none is broken UTF-8
TEST(CommandLineTests, ArgumentsThatAreNotUtf8AreRefused) {
    Outcome const outcome = runConsole({"eval", "2\xFF"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vnconsole: argument 2 isn't UTF-8: \"2\uFFFD\"\n");
}
#endif

TEST(CommandLineTests, LanguageWithoutACatalogueIsRefused) {
    Outcome const outcome = runConsole({"eval", "2 cm", "--language", "xx"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vnconsole: there is no language \"xx\"; there are en, de, fr, ja\n");
    EXPECT_EQ(runConsole({"--language", "xx", "eval", "2 cm"}).err, outcome.err);
}

TEST(CommandLineTests, TourEvaluatesItsExamples) {
    Outcome const outcome = runConsole({"tour"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    struct Row {
        char const * text;
        char const * unit; // null for none
    };
    Row const rows[] = {
        {"1 in + 1 cm", "cm"},      {"2cm*2 + 3cm/2 - 2^3 + 4%3", "cm"}, {"2' 6 3/4\"", "cm"},
        {"45 deg 30'", "deg"},      {"5 kg * 2 m / s^2", "N"},           {"Gravity * 3 s", "mph"},
        {"cos(60 deg) * 3 m", "m"}, {"max(2 ft; 60 cm)", "cm"},          {"20 C", "F"},
        {"7 / (2.2)", nullptr}};
    std::size_t lines = 0;
    for (Row const & row : rows) {
        std::vector<std::string> arguments{"eval", row.text};
        if (row.unit) arguments.insert(arguments.end(), {"--unit", row.unit});
        std::string const shown = runConsole(arguments).out;
        std::string const value = shown.substr(11, shown.find('\n') - 11);
        std::size_t const line = outcome.out.find("\n  " + std::string(row.text) + "  ");
        ASSERT_NE(line, std::string::npos) << row.text;
        std::size_t const end = outcome.out.find('\n', line + 1);
        std::string const text = outcome.out.substr(line + 1, end - line);
        EXPECT_NE(text.find("  " + value + "  "), std::string::npos) << text << value;
        ++lines;
    }
    EXPECT_EQ(lines, std::size(rows));
    EXPECT_NE(outcome.out.find("  did you mean cm?\n"), std::string::npos);
}

#ifndef _WIN32 // which has neither /dev/full nor the shell of these lines
TEST(CommandLineTests, FullDiskIsTold) {
    for (char const * const command : {"eval 2", "units", "batch", "tour", "--help"}) {
        Outcome const outcome = runShell("\"$VNCONSOLE\" " + std::string(command) + " > /dev/full",
                                         "{\"text\":\"2\"}\n");
        EXPECT_EQ(outcome.status, 1) << command;
        EXPECT_EQ(outcome.err, "vnconsole: can't write the output: No space left on device\n")
            << command;
    }
}

TEST(CommandLineTests, BrokenPipeEndsQuietly) {
    std::string input;
    for (int i = 0; i < 20000; ++i) input += "{\"text\":\"2 cm + 3 in\"}\n";
    Outcome const killed = runShell("\"$VNCONSOLE\" batch | head -n 1", input);
    EXPECT_EQ(killed.status, 0);
    EXPECT_EQ(killed.err, "");
    EXPECT_EQ(std::count(killed.out.begin(), killed.out.end(), '\n'), 1);
    // The same where the caller has switched the signal off.
    Outcome const told =
        runShell("trap '' PIPE; { \"$VNCONSOLE\" batch; echo status $? >&2; } | head -n 1", input);
    EXPECT_EQ(told.err, "status 1\n");
}
#else
TEST(CommandLineTests, BrokenPipeEndsQuietly) {
    std::string input;
    for (int i = 0; i < 20000; ++i) input += "{\"text\":\"2 cm + 3 in\"}\n";
    Outcome const outcome = runConsoleUnread({"batch"}, input);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
}
#endif

} // namespace

} // namespace Vn::Console::Tests
