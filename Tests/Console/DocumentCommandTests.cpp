// vnconsole document: commands on a file, each in a process of its own.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

namespace fs = std::filesystem;

class DocumentCommandTests : public DocumentFixture {
protected:
    // Root, two groups in it, one of them with a group of three entities.
    static void makeSample() {
        Outcome const made = document("new, make, make 0, make, add 0/0 3");
        ASSERT_EQ(made.status, 0) << made.err;
    }
    static std::string tree() { return document("tree").out; }
};

char const c_sample[] = "Groups #1\n"
                        "Groups/CmnData[0] #29\n"
                        "Groups/CmnData[0]/CmnData[0] #30\n"
                        "Groups/CmnData[0]/CmnData[0]/CmnData[0] #32\n"
                        "Groups/CmnData[0]/CmnData[0]/CmnData[1] #33\n"
                        "Groups/CmnData[0]/CmnData[0]/CmnData[2] #34\n"
                        "Groups/CmnData[1] #31\n";

TEST_F(DocumentCommandTests, EachCommandSaysWhatItDid) {
    Outcome const outcome = document("new, make, make 0, add 0/0 3, add 0, move 0/1 before 0/0, "
                                     "move 0/1 into ., move 1/2 after 1/0, remove 1/1, undo, redo, "
                                     "delete 1");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "a new document with an empty group \"Groups\"\n"
              "made Groups/CmnData[0] (#29)\n"
              "made Groups/CmnData[0]/CmnData[0] (#30)\n"
              "added 3 entities: Groups/CmnData[0]/CmnData[0]/CmnData[0] to "
              "Groups/CmnData[0]/CmnData[0]/CmnData[2]\n"
              "added Groups/CmnData[0]/CmnData[1] (#34)\n"
              "moved Groups/CmnData[0]/CmnData[1] to Groups/CmnData[0]/CmnData[0] (#34)\n"
              "moved Groups/CmnData[0]/CmnData[1] to Groups/CmnData[1] (#30)\n"
              "moved Groups/CmnData[1]/CmnData[2] to Groups/CmnData[1]/CmnData[1] (#33)\n"
              "removed Groups/CmnData[1]/CmnData[1] (#33)\n"
              "undone: remove Groups/CmnData[1]/CmnData[1]\n"
              "redone: remove Groups/CmnData[1]/CmnData[1]\n"
              "deleted Groups/CmnData[1] (#30) and 2 entities below it\n"
              "saved a.vnd\n");
    EXPECT_EQ(places(tree()), "Groups #1\n"
                              "Groups/CmnData[0] #29\n"
                              "Groups/CmnData[0]/CmnData[0] #34\n");
}

TEST_F(DocumentCommandTests, AnotherProcessFindsTheSameTree) {
    Outcome const made = document("new, make, make 0, make, add 0/0 3, move 1 before 0, tree .");
    ASSERT_EQ(made.status, 0);
    std::size_t const begin = made.out.find("Groups  #1");
    std::string const shown = made.out.substr(begin, made.out.find("saved a.vnd") - begin);
    Outcome const again = document("tree .");
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.out, shown);
    EXPECT_EQ(places(shown).substr(0, places(shown).find('\n', 30) + 1),
              "Groups #1\nGroups/CmnData[0] #31\n");
}

TEST_F(DocumentCommandTests, ALineOfTheTreeHasPathIdAndWhatTheEntityIs) {
    ASSERT_EQ(
        run("new, make, make /Custom, add 0, makesystem \"Mine & yours\" mine imperial").status, 0);
    std::string const all = tree();
    for (char const * const line :
         {"Groups  #1  group  2 entities\n", "Groups/CmnData[0]  #29  group  1 entity\n",
          "Groups/CmnData[0]/CmnData[0]  #31  entity\n",
          "Groups/CmnData[1]  #30  custom groups  empty\n", "AssetSettings  #2  settings\n",
          "NamedViews  #3  views  4 entities\n", "NamedViews/CmnData[0]  #5  view  TOP\n",
          "UnitSystems  #12  unit systems  2 entities\n",
          "UnitSystems/CmnData[0]  #13  unit system  document, \"Document units\"\n",
          "UnitSystems/CmnData[0]/CmnData[0]  #14  unit  Length: mm\n",
          "  unit system  mine, \"Mine & yours\"\n", "  unit  Length: ft\n"})
        EXPECT_NE(all.find(line), std::string::npos) << line << all;
}

TEST_F(DocumentCommandTests, VerboseTreeHasWhatTheSystemSays) {
    makeSample();
    std::istringstream lines(document("tree --verbose").out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "Groups  #1  CommonBaseEntData (base ManagedGroupEntity (base ManagedEntity "
                    "(base Entity 1) : HasParent: 0) children : 2) HasClientObject: 0");
    std::string const all = document("tree /Verbose").out;
    EXPECT_EQ(places(all), c_sample);
    EXPECT_EQ(document("--verbose").out, all);
    EXPECT_EQ(document("--verbose tree").out, all);
    EXPECT_EQ(document("--verbose --json").out, document("--json").out);
    Outcome const outcome = document("--verbose history");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "vnconsole: --verbose goes with the command tree\n");
}

TEST_F(DocumentCommandTests, TheTreeIsTheOneCommandThatNeedsntBeNamed) {
    makeSample();
    EXPECT_EQ(document("").out, tree());
}

TEST_F(DocumentCommandTests, APartOfTheTreeCanBeShown) {
    makeSample();
    EXPECT_EQ(places(document("tree 0/0").out), "Groups/CmnData[0]/CmnData[0] #30\n"
                                                "Groups/CmnData[0]/CmnData[0]/CmnData[0] #32\n"
                                                "Groups/CmnData[0]/CmnData[0]/CmnData[1] #33\n"
                                                "Groups/CmnData[0]/CmnData[0]/CmnData[2] #34\n");
    EXPECT_EQ(places(document("tree #34").out), "Groups/CmnData[0]/CmnData[0]/CmnData[2] #34\n");
    EXPECT_EQ(document("tree 5").status, 1);
}

TEST_F(DocumentCommandTests, JsonIsOneObjectALineAndNothingElse) {
    Outcome const outcome = document("--new --json make, add 0 2, history, tree");
    ASSERT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    std::vector<nlohmann::json> objects;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);)
        objects.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(objects.size(), 27u);
    EXPECT_EQ(objects[0]["path"], "Groups");
    EXPECT_EQ(objects[0]["parent"], nullptr);
    EXPECT_EQ(objects[0]["index"], nullptr);
    EXPECT_EQ(objects[1]["class"], "CommonBaseGroupEntity");
    EXPECT_EQ(objects[1]["children"], 2);
    EXPECT_EQ(objects[3]["path"], "Groups/CmnData[0]/CmnData[1]");
    EXPECT_EQ(objects[3]["id"], 31);
    EXPECT_EQ(objects[3]["parent"], 29);
    EXPECT_EQ(objects[3]["index"], 1);
    EXPECT_EQ(objects[3]["class"], "CommonBaseEntity");
    EXPECT_EQ(objects[3]["children"], nullptr);
    EXPECT_EQ(objects[3]["text"], "CommonBaseEntData (base ManagedEntity (base Entity 31) : "
                                  "HasParent: 1) HasClientObject: 0");
    // The flag of the text command does the same.
    std::string const all = document("tree --json").out;
    EXPECT_EQ(document("tree /Json").out, all);
    EXPECT_EQ(document("--json tree /json").out, all);
    EXPECT_EQ(document("--json").out, all);
    // A part of it is told as within the whole.
    for (char const * const part : {"tree 0/1 --json", "tree #31 --json"}) {
        std::string const line = document(part).out;
        ASSERT_FALSE(line.empty());
        EXPECT_NE(all.find('\n' + line), std::string::npos) << line;
    }
}

TEST_F(DocumentCommandTests, CommandsAreSeparatedByCommasOrThen) {
    makeSample();
    std::string const answers = "made Groups/CmnData[2] (#35)\n"
                                "added 2 entities: Groups/CmnData[2]/CmnData[0] to "
                                "Groups/CmnData[2]/CmnData[1]\n"
                                "deleted Groups/CmnData[1] (#31)\n"
                                "saved a.vnd\n";
    fs::copy_file("a.vnd", "b.vnd");
    EXPECT_EQ(runConsole({"document", "a.vnd", "make,add 2 2,delete 1"}).out, answers);
    auto const restore = [] { // a copy over what is there isn't made by every library
        fs::remove("a.vnd");
        fs::copy_file("b.vnd", "a.vnd");
    };
    restore();
    for (char const * const commands :
         {"make, add 2 2, delete 1", "make , add 2 2 , delete 1", "make then add 2 2 then delete 1",
          "make,add 2 2,,delete 1,",
          "Groups.Make, groups.add 2 2, "
          "Delete 1"}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 0) << commands << '\n' << outcome.err;
        EXPECT_EQ(outcome.out, answers) << commands;
        restore();
    }
}

TEST_F(DocumentCommandTests, EveryFormOfAPathNamesTheSameEntity) {
    makeSample();
    for (char const * const path : {"0/0/1", "Groups/CmnData[0]/CmnData[0]/CmnData[1]", "#33",
                                    "Groups/0/0/1", "CmnData[0]/0/1"}) {
        Outcome const outcome = document(std::string("tree ") + path);
        bool const isPath = path[0] != 'C';
        EXPECT_EQ(outcome.status, isPath ? 0 : 1) << path;
        EXPECT_EQ(places(outcome.out),
                  isPath ? "Groups/CmnData[0]/CmnData[0]/CmnData[1] #33\n" : "")
            << path;
    }
    for (char const * const path : {".", "Groups", "#1"})
        EXPECT_EQ(places(document(std::string("tree ") + path).out), c_sample) << path;
}

TEST_F(DocumentCommandTests, WrongPathsAreExplained) {
    makeSample();
    struct Row {
        char const * path;
        char const * reason;
    };
    Row const rows[] = {
        {"7", "Groups has no child 7: it has 0 to 1"},
        {"0/1", "Groups/CmnData[0] has no child 1: it has only 0"},
        {"1/0", "Groups/CmnData[1] has no children"},
        {"0/0/0/0", "Groups/CmnData[0]/CmnData[0]/CmnData[0] isn't a group and has no children"},
        {"0/99999999999999999999", "Groups/CmnData[0] has no child 99999999999999999999: it has "
                                   "only 0"},
        {"0/CmnDta[0]",
         "\"CmnDta[0]\" isn't a child of Groups/CmnData[0]: children are called 0 or "
         "CmnData[0], 1 or CmnData[1], and so on"},
        {"Group/0", "the document has no root \"Group\"; its roots are Groups, AssetSettings, "
                    "NamedViews, UnitSystems"},
        {"#77", "no entity has the id #77"},
        {"#x", "\"#x\" isn't an id: that is a number such as #12"},
        {"#", "\"#\" isn't an id: that is a number such as #12"},
        {"0//1",
         "\"0//1\" isn't a path: write it as 0/2, as Groups/CmnData[0]/CmnData[2], or as #12 "
         "with the id of the entity"},
        {"0/[1",
         "\"0/[1\" isn't a path: write it as 0/2, as Groups/CmnData[0]/CmnData[2], or as #12 "
         "with the id of the entity"},
    };
    for (Row const & row : rows) {
        Outcome const outcome = document(std::string("remove ") + row.path);
        EXPECT_EQ(outcome.status, 1) << row.path;
        EXPECT_EQ(outcome.out, "") << row.path;
        EXPECT_EQ(outcome.err,
                  std::string("cannot remove: ") + row.reason + "\nnothing was saved\n");
    }
}

TEST_F(DocumentCommandTests, WrongCommandsAreExplained) {
    makeSample();
    struct Row {
        char const * commands;
        char const * err;
    };
    Row const rows[] = {
        {"make 0/0/0",
         "cannot make a group: Groups/CmnData[0]/CmnData[0]/CmnData[0] isn't a group\n"},
        {"make 0 1", "cannot make a group: \"1\" is too much: Groups.Make [Parent] [/Custom]\n"},
        {"add", "cannot add entities: more is needed: Groups.Add <Parent> [Count]\n"},
        {"add 0 0", "cannot add entities: \"0\" isn't a whole number from 1 to 1000000\n"},
        {"add 0 many", "cannot add entities: \"many\" isn't a whole number from 1 to 1000000\n"},
        {"add 0 1000001",
         "cannot add entities: \"1000001\" isn't a whole number from 1 to 1000000\n"},
        {"add 0 4294967297",
         "cannot add entities: \"4294967297\" isn't a whole number from 1 to 1000000\n"},
        {"add 0/0/0 2",
         "cannot add entities: Groups/CmnData[0]/CmnData[0]/CmnData[0] isn't a group\n"},
        {"remove .", "cannot remove: Groups is a root of the tree\n"},
        {"remove 0", "cannot remove: Groups/CmnData[0] is a group with 4 entities below it; "
                     "Groups.Delete deletes them all\n"},
        {"delete 0/0/0", "cannot delete: Groups/CmnData[0]/CmnData[0]/CmnData[0] isn't a group; "
                         "Groups.Remove takes it out of its own\n"},
        {"delete Groups", "cannot delete: Groups is a root of the tree\n"},
        {"move 0", "cannot move: more is needed: Groups.Move <Path> before|after|into <Path>\n"},
        {"move 0 behind 1", "cannot move: an entity goes before or after another, or into a group, "
                            "not \"behind\"\n"},
        {"move 0 before 0", "cannot move: an entity has no place beside or within itself\n"},
        {"move 0 before 0/0/1",
         "cannot move: Groups/CmnData[0]/CmnData[0]/CmnData[1] stands within "
         "Groups/CmnData[0]\n"},
        {"move 0 into 0/0",
         "cannot move: Groups/CmnData[0]/CmnData[0] stands within Groups/CmnData[0]\n"},
        {"move 1 into 0/0/0",
         "cannot move: Groups/CmnData[0]/CmnData[0]/CmnData[0] isn't a group\n"},
        {"move . into 0", "cannot move: Groups is a root of the tree\n"},
        {"move 0 before .", "cannot move: Groups is a root and has no siblings\n"},
        {"undo",
         "cannot undo: nothing was changed since the document was opened; the history isn't "
         "saved, and no earlier session can be undone\n"},
        {"make, undo, undo", "cannot undo: everything is undone already\n"},
        {"redo", "cannot redo: nothing was undone last\n"},
        {"make, undo, make, redo", "cannot redo: nothing was undone last\n"},
        {"make 0 /Fast", "cannot make a group: \"/Fast\" isn't a flag of it, and a path goes in "
                         "quotes: Groups.Make [Parent] [/Custom]\n"},
    };
    std::string const before = readFile("a.vnd");
    for (Row const & row : rows) {
        Outcome const outcome = document(row.commands);
        EXPECT_EQ(outcome.status, 1) << row.commands;
        EXPECT_EQ(outcome.err, std::string(row.err) + "nothing was saved\n") << row.commands;
    }
    EXPECT_EQ(readFile("a.vnd"), before);
}

TEST_F(DocumentCommandTests, NothingIsSavedIfACommandFails) {
    makeSample();
    std::string const before = readFile("a.vnd");
    Outcome const outcome = document("make, delete 0, delete 9, make");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "made Groups/CmnData[2] (#35)\n"
                           "deleted Groups/CmnData[0] (#29) and 4 entities below it\n");
    EXPECT_EQ(outcome.err,
              "cannot delete: Groups has no child 9: it has 0 to 1\nnothing was saved\n");
    EXPECT_EQ(readFile("a.vnd"), before);
    EXPECT_EQ(document("new, make, delete 9", "b.vnd").status, 1);
    EXPECT_FALSE(fs::exists("b.vnd"));
}

TEST_F(DocumentCommandTests, AnEntityThatIsMovedIntoItsOwnGroupGoesToTheEnd) {
    makeSample();
    Outcome const outcome = document("move 0/0/0 into 0/0, undo, redo, move 0/0/2 into 0/0");
    EXPECT_EQ(outcome.out, "moved Groups/CmnData[0]/CmnData[0]/CmnData[0] to "
                           "Groups/CmnData[0]/CmnData[0]/CmnData[2] (#32)\n"
                           "undone: move Groups/CmnData[0]/CmnData[0]/CmnData[0] into "
                           "Groups/CmnData[0]/CmnData[0]\n"
                           "redone: move Groups/CmnData[0]/CmnData[0]/CmnData[0] into "
                           "Groups/CmnData[0]/CmnData[0]\n"
                           "Groups/CmnData[0]/CmnData[0]/CmnData[2] is there already\n"
                           "saved a.vnd\n");
    EXPECT_EQ(places(document("tree 0/0").out), "Groups/CmnData[0]/CmnData[0] #30\n"
                                                "Groups/CmnData[0]/CmnData[0]/CmnData[0] #33\n"
                                                "Groups/CmnData[0]/CmnData[0]/CmnData[1] #34\n"
                                                "Groups/CmnData[0]/CmnData[0]/CmnData[2] #32\n");
}

TEST_F(DocumentCommandTests, NothingIsSavedIfNothingChanged) {
    makeSample();
    std::string const before = readFile("a.vnd");
    for (char const * const commands :
         {"tree", "history", "make, undo", "move 1 after 0", "move 0/0 into 0"}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 0) << commands << outcome.err;
        EXPECT_EQ(outcome.out.find("saved a.vnd"), std::string::npos) << commands;
        EXPECT_EQ(readFile("a.vnd"), before) << commands;
    }
    EXPECT_EQ(document("move 1 after 0").out, "Groups/CmnData[1] is there already\n");
}

// A child that isn't saved, such as one in a transient segment, leaves null in the list of its
// group.
TEST_F(DocumentCommandTests, AnEmptyPlaceInAGroupIsPassedOver) {
    ASSERT_EQ(document("new, add . 3").status, 0);
    execute("a.vnd", "UPDATE lists SET items='[29,null,31]' WHERE entity=1;"
                     "DELETE FROM CommonBaseEntity WHERE id=30");
    EXPECT_EQ(document("check").status, 0);
    EXPECT_EQ(places(tree()), "Groups #1\nGroups/CmnData[0] #29\nGroups/CmnData[2] #31\n");
    for (char const * const commands : {"tree 1", "remove 1", "delete 1", "make 1", "tree 1/0",
                                        "move 1 before 0", "move 0 after 1"}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 1) << commands;
        EXPECT_NE(outcome.err.find("Groups/CmnData[1] is empty: what stood there wasn't saved\n"),
                  std::string::npos)
            << commands << outcome.err;
    }
    EXPECT_EQ(document("move 2 before 0, make").status, 0);
    EXPECT_EQ(places(tree()), "Groups #1\nGroups/CmnData[0] #31\nGroups/CmnData[1] #29\n"
                              "Groups/CmnData[3] #32\n");
}

TEST_F(DocumentCommandTests, ParentsThatLeadInACircleAreDamage) {
    ASSERT_EQ(document("new, make, make, add 0 1").status, 0);
    execute("a.vnd",
            "UPDATE CommonBaseGroupEntity SET \"ManagedEntity.rParent\"=59-id WHERE id IN (29,30)");
    for (char const * const commands : {"tree", "check", "make"}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 1) << commands;
        EXPECT_NE(outcome.err.find("the parents of entity "), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find(" lead in a circle\n"), std::string::npos) << outcome.err;
    }
}

TEST_F(DocumentCommandTests, AMissingFileIsAnErrorForAllButNew) {
    for (char const * const commands : {"tree", "make", "undo", ""}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, "cannot open the document: there is no a.vnd; --new makes it\n");
        EXPECT_FALSE(fs::exists("a.vnd"));
    }
    EXPECT_EQ(document("check").status, 1);
    EXPECT_EQ(document("--new").status, 0);
    EXPECT_EQ(places(tree()), "Groups #1\n");
}

TEST_F(DocumentCommandTests, ANewDocumentReplacesAFileOnlyByForce) {
    makeSample();
    std::string const before = readFile("a.vnd");
    for (char const * const commands : {"new", "--new", "--new make", "--new new"}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 1) << commands;
        EXPECT_EQ(outcome.err,
                  "cannot make a new document: a.vnd is there already; the command new "
                  "/Force replaces it\n");
    }
    EXPECT_EQ(readFile("a.vnd"), before);
    EXPECT_EQ(document("new /force, make").status, 0);
    EXPECT_EQ(places(tree()), "Groups #1\nGroups/CmnData[0] #29\n");
}

TEST_F(DocumentCommandTests, WhatWasLeftBesideTheNameOfANewDocumentIsKept) {
    std::ofstream("a.vnd-journal") << "a journal";
    Outcome const outcome = document("new, make, add 0 3");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err,
              "note: a.vnd-journal, which was left beside it, is kept as a.vnd-journal.kept\n");
    EXPECT_EQ(readFile("a.vnd-journal.kept"), "a journal");
    EXPECT_EQ(document("check").out, "nothing is wrong with a.vnd\n");
}

TEST_F(DocumentCommandTests, WithoutIdsEntitiesArentAddedAndTheDocumentIsSaved) {
    makeSample();
    execute("a.vnd", "UPDATE document SET next_entity=4611686018427387904");
    Outcome const outcome = document("add 0");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "cannot add entities: the document has no ids left for new entities\n"
                           "nothing was saved\n");
    EXPECT_EQ(document("move 1 into 0").status, 0);
    EXPECT_EQ(document("check").status, 0);
}

TEST_F(DocumentCommandTests, CommandsOfOtherAddInsAreCalledByTheirWholeNames) {
    makeSample();
    EXPECT_THAT(answer("Expressions.Parse \"2 in\" cm"), testing::HasSubstr("5.08"));
    Outcome const outcome = run("make, Units.MakeForMagnitude x");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, testing::HasSubstr("which \"x\" isn't\nnothing was saved\n"));
}

TEST_F(DocumentCommandTests, WhatIsntUnderstoodIsToldBeforeAnythingIsDone) {
    struct Row {
        char const * commands;
        char const * err;
    };
    Row const rows[] = {
        {"make, mvoe 0 before 1",
         "vnconsole: there is no command \"mvoe\" on documents; did you mean move?\n"},
        {"frobnicate",
         "vnconsole: there is no command \"frobnicate\" on documents; the commands are new, make, "
         "add, remove, move, delete, show, set, makesystem, systems, chooseid, choose, changeunit, "
         "system, activate, deactivate, "
         "complete, unchoose, removesystem, settings, setting, resetsetting, resetaxes, "
         "views, newview, updateview, renameview, moveview, deleteview, synchronize, "
         "restoreview, tree, picture, export, undo, redo, history, check\n"},
        {"Units.Lost",
         "vnconsole: there is no command \"Units.Lost\" on documents; the commands are "
         "new, make, add, remove, move, delete, show, set, makesystem, systems, "
         "chooseid, choose, changeunit, system, activate, deactivate, "
         "complete, unchoose, removesystem, settings, setting, resetsetting, "
         "resetaxes, views, newview, updateview, renameview, moveview, deleteview, "
         "synchronize, restoreview, tree, picture, export, undo, redo, history, "
         "check\n"},
        {"make, saveas b.vnd", "vnconsole: saveas belongs to a session; here the file is opened "
                               "first and saved after the last command\n"},
        {"make, new", "vnconsole: new stands in front of all other commands\n"},
        {"check, tree", "vnconsole: check stands alone, and looks at the file\n"},
        {"make --json", "vnconsole: --json goes with the command show, systems, system, settings, "
                        "views or tree\n"},
    };
    makeSample();
    std::string const before = readFile("a.vnd");
    for (Row const & row : rows) {
        Outcome const outcome = document(row.commands);
        EXPECT_EQ(outcome.status, 2) << row.commands;
        EXPECT_EQ(outcome.out, "") << row.commands;
        EXPECT_EQ(outcome.err, row.err);
    }
    EXPECT_EQ(runConsole({"document"}).status, 2);
    EXPECT_EQ(runConsole({"document", ""}).status, 2);
    EXPECT_EQ(readFile("a.vnd"), before);
}

TEST_F(DocumentCommandTests, CheckTellsWhatIsWrong) {
    makeSample();
    Outcome const good = document("check");
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.out, "nothing is wrong with a.vnd\n");

    execute("a.vnd", "UPDATE roots SET entity = 99 WHERE key = 'Groups'");
    Outcome const damaged = document("check");
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.out, "");
    EXPECT_EQ(damaged.err, "a.vnd is damaged:\n  the root Groups: there is no such entity\n");
    Outcome const opened = document("make");
    EXPECT_EQ(opened.status, 1);
    EXPECT_EQ(opened.err, "cannot open the document 'a.vnd': damaged: the root Groups: there is no "
                          "such entity\n");

    std::ofstream("a.vnd", std::ios::binary) << "no document at all\n";
    Outcome const foreign = document("check");
    EXPECT_EQ(foreign.status, 1);
    EXPECT_EQ(foreign.err, "a.vnd is damaged:\n  it is not a document\n");
}

#ifndef _WIN32 // where the system checks names otherwise

TEST_F(DocumentCommandTests, AFileNameThatIsTooLongIsToldAsThat) {
    std::string const name(300, 'x');
    std::string const why =
        " the document '" + name + "': invalid argument: the name is longer than names may be\n";
    EXPECT_EQ(document("make", name).err, "cannot open" + why);
    EXPECT_EQ(document("check", name).err, "cannot check" + why);
    EXPECT_EQ(document("new", name).err, "cannot save" + why + "nothing was saved\n");
}

#endif

TEST_F(DocumentCommandTests, CheckTellsTypesOfAnotherProgramFromDamage) {
    makeSample();
    execute("a.vnd", "UPDATE types SET id = 'Foreign', name = 'ForeignMetaType' "
                     "WHERE name = 'CommonBaseEntityMetaType'");
    Outcome const foreign = document("check");
    EXPECT_EQ(foreign.status, 3);
    EXPECT_EQ(foreign.out, "");
    EXPECT_EQ(foreign.err, "nothing is damaged in a.vnd, but it has entities of types that this "
                           "program doesn't know:\n  ForeignMetaType (Foreign)\n");
    Outcome const opened = document("tree");
    EXPECT_EQ(opened.status, 1);
    EXPECT_EQ(opened.err, "cannot open the document 'a.vnd': not supported: the type "
                          "ForeignMetaType (Foreign) isn't known to this program\n");

    execute("a.vnd", "UPDATE roots SET entity = 99 WHERE key = 'Groups'");
    Outcome const both = document("check");
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.err, "a.vnd is damaged:\n  the root Groups: there is no such entity\n"
                        "it also has entities of types that this program doesn't know:\n"
                        "  ForeignMetaType (Foreign)\n");
}

TEST_F(DocumentCommandTests, CheckDoesNotTakeALaterVersionForDamage) {
    makeSample();
    execute("a.vnd", "UPDATE types SET version = 77 WHERE name = 'CommonBaseEntityMetaType'");
    Outcome const outcome = document("check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.find("damaged"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("written by a later version"), std::string::npos) << outcome.err;
}

TEST_F(DocumentCommandTests, CutFilesEndInAReasonAndNeverInACrash) {
    makeSample();
    std::string const whole = readFile("a.vnd");
    for (std::size_t size = 0; size < whole.size(); size += 1500) {
        std::ofstream("a.vnd", std::ios::binary) << whole.substr(0, size);
        Outcome const checked = document("check");
        EXPECT_EQ(checked.status, 1) << size;
        EXPECT_NE(checked.err, "") << size;
        Outcome const opened = document("make");
        EXPECT_EQ(opened.status, 1) << size;
        EXPECT_NE(opened.err, "") << size;
    }
}

TEST_F(DocumentCommandTests, FileNamesMayHaveAnyCharacters) {
    std::vector<std::string> names{"a b.vnd", "\u00E4\u65E5.vnd", "a,b then.vnd", "[1].vnd", "++",
                                   "#1",      "CmnData[0]"};
#ifndef _WIN32 // where these mean something else
    names.insert(names.end(), {"a\"b\\", "a\nb", "a\\"});
#endif
    for (std::string const & name : names) {
        Outcome const made = document("new, make", name);
        EXPECT_EQ(made.status, 0) << name << made.err;
        EXPECT_TRUE(fs::exists(fs::path(std::u8string(name.begin(), name.end())))) << name;
        EXPECT_EQ(places(document("", name).out), "Groups #1\nGroups/CmnData[0] #29\n") << name;
        EXPECT_EQ(document("check", name).status, 0) << name;
    }
    EXPECT_EQ(runConsole({"document", "--new", "--", "-x.vnd", "make"}).status, 0);
    EXPECT_TRUE(fs::exists("-x.vnd"));
    EXPECT_EQ(document("new", (directory() / "whole.vnd").string()).status, 0);
}

TEST_F(DocumentCommandTests, ADocumentThatCantBeSavedIsTold) {
    Outcome const outcome = document("new, make", "missing/a.vnd");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out.find("saved"), std::string::npos);
    EXPECT_NE(outcome.err.find("cannot save the document 'missing/a.vnd'"), std::string::npos)
        << outcome.err;
}

TEST_F(DocumentCommandTests, HistoryMarksWhereTheDocumentStands) {
    makeSample();
    EXPECT_EQ(document("history").out, ">  0  where the history begins  saved\n"
                                       "the document is as a.vnd has it\n");
    Outcome const outcome = document("make, add 1 2, undo, history");
    EXPECT_EQ(outcome.out.substr(outcome.out.find("   0")),
              "   0  where the history begins             saved\n"
              ">  1  make Groups/CmnData[2]\n"
              "   2  add 2 entities to Groups/CmnData[1]  undone\n"
              "the document differs from a.vnd\n"
              "saved a.vnd\n");
}

TEST_F(DocumentCommandTests, ManyEntitiesAreListed) {
    ASSERT_EQ(document("new, make, add 0 200000").status, 0);
    std::string const shown = tree();
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 200025);
    EXPECT_NE(shown.find("\nGroups/CmnData[0]/CmnData[199999]  #200029  "), std::string::npos);
}

} // namespace

} // namespace Vn::Console::Tests
