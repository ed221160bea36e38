// What every document has beside its content, and when it gets it.

#include <filesystem>

#include <gtest/gtest.h>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

namespace fs = std::filesystem;

class NewDocumentTests : public DocumentFixture {
protected:
    // A document as programs wrote it that knew neither settings nor views.
    void makeOld() {
        fs::copy_file(fs::path(VN_WRITTEN_DOCUMENTS) / "linux.vnd", directory() / "a.vnd");
        fs::permissions(directory() / "a.vnd", fs::perms::owner_write, fs::perm_options::add);
    }
    static bool contains(std::string const & text, std::string const & part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(NewDocumentTests, HasSettingsBuiltInViewsAndAnActiveUnitSystem) {
    answer("new");
    std::string const tree = answer("tree");
    std::size_t place = 0;
    for (char const * const root :
         {"Groups  #1  ", "AssetSettings  #2  ", "NamedViews  #3  ", "UnitSystems  #12  "}) {
        std::size_t const found = tree.find(root);
        ASSERT_NE(found, std::string::npos) << root << tree;
        EXPECT_GE(found, place) << "the roots stand in the order in which they were made";
        place = found;
    }
    EXPECT_EQ(answer("systems"), "document  Document units  15 choices  active\n");
    std::string const views = answer("views");
    std::size_t last = 0;
    for (char const * const name : {"TOP ", "FRONT ", "RIGHT ", "HOME "}) {
        EXPECT_GE(views.find(name), last) << views;
        last = views.find(name);
    }
    EXPECT_EQ(answer("check"), "nothing is wrong with a.vnd\n");
}

TEST_F(NewDocumentTests, NothingOfItCanBeUndone) {
    Outcome const outcome = run("new, undo");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.err, "cannot undo: nothing was changed")) << outcome.err;
    EXPECT_TRUE(contains(answer("new /Force, make, undo, views, systems"), "FRONT"));
}

TEST_F(NewDocumentTests, ItsUnitsFollowThePreferenceForNewDocuments) {
    struct Row {
        char const * preference;
        char const * length;
        char const * force;
    };
    constexpr Row c_rows[] = {{"0", "mm", "N"},
                              {"1", "cm", "N"},
                              {"2", "m", "N"},
                              {"3", "in", "lbforce"},
                              {"4", "ft", "lbforce"}};
    for (Row const & row : c_rows) {
        SCOPED_TRACE(row.length);
        std::string const options = (directory() / "options").string();
        Outcome const set =
            runConsole({"--options", options, "options", "set", "generalUnit", row.length});
        ASSERT_EQ(set.status, 0) << set.err;
        Outcome const made = runConsole(
            {"--options", options, "document", "a.vnd", "new /Force, system document /Json"});
        EXPECT_EQ(made.status, 0) << made.err;
        EXPECT_TRUE(contains(made.out, "{\"number\":0,\"kind\":\"Length\",\"unit\":\"" +
                                           std::string(row.length) + "\""))
            << made.out;
        EXPECT_TRUE(contains(made.out, "\"kind\":\"Force\",\"unit\":\"" + std::string(row.force)))
            << made.out;
        EXPECT_EQ(made.out.find("\"kind\":\"Length\""), made.out.rfind("\"kind\":\"Length\""));
    }
}

TEST_F(NewDocumentTests, ADocumentFromBeforeGetsThemWithItsFirstChange) {
    makeOld();
    std::string const before = answer("tree");
    std::string const changed = answer("make, tree, undo, tree, redo, tree");
    EXPECT_TRUE(contains(changed, "made Groups/CmnData[3] (#9)\n")) << changed;
    std::size_t const undone = changed.find("undone: make Groups/CmnData[3]\n");
    std::size_t const redone = changed.find("redone: make Groups/CmnData[3]\n");
    ASSERT_NE(redone, std::string::npos) << changed;
    std::size_t const first = changed.find('\n', undone) + 1;
    EXPECT_EQ(changed.substr(first, redone - first), before) << "one undo takes back both";
    EXPECT_TRUE(contains(changed.substr(redone), "AssetSettings  #10")) << changed;
    EXPECT_TRUE(contains(answer("views"), "HOME"));
    EXPECT_EQ(answer("systems"), "the document has no unit system\n");
    EXPECT_EQ(answer("check"), "nothing is wrong with a.vnd\n");
}

TEST_F(NewDocumentTests, ACommandThatOnlyReadsLeavesTheFileAsItIs) {
    for (bool const isOld : {true, false}) {
        if (isOld)
            makeOld();
        else
            answer("new /Force");
        std::string const bytes = readFile("a.vnd");
        for (char const * const command :
             {"tree", "show .", "systems", "settings", "settings /Json", "views", "views /Json",
              "history", "check", "settings, views, tree"}) {
            EXPECT_EQ(run(command).status, 0) << command;
            EXPECT_TRUE(readFile("a.vnd") == bytes) << command;
        }
        runConsole({"eval", "--document", "a.vnd", "1 in"});
        EXPECT_TRUE(readFile("a.vnd") == bytes);
    }
}

TEST_F(NewDocumentTests, AChangeThatChangesNothingLeavesNoSettings) {
    makeOld();
    std::string const bytes = readFile("a.vnd");
    for (char const * const command :
         {"setting sceneUp (0, 0, 1)", "resetsetting", "resetsetting fitHome", "resetaxes",
          "deactivate", "move 0 before 1", "setting settingsInitialized off"}) {
        Outcome const outcome = run(std::string(command) + ", history");
        EXPECT_EQ(outcome.status, 0) << command << outcome.err;
        EXPECT_TRUE(contains(outcome.out, ">  0  where the history begins")) << outcome.out;
        EXPECT_TRUE(readFile("a.vnd") == bytes) << command;
    }
}

TEST_F(NewDocumentTests, ADocumentWithoutThemSaysHowItGetsThem) {
    makeOld();
    EXPECT_TRUE(contains(answer("settings"),
                         "the document has no settings yet, and gets these with its first change"));
    EXPECT_EQ(answer("views"), "the document has no views yet, and gets the built-in ones with its "
                               "first change\n");
    EXPECT_EQ(run("renameview TOP A").err,
              "cannot rename the view: the document has no views yet; Views.Restore makes the "
              "built-in ones\nnothing was saved\n");
    EXPECT_EQ(answer("restoreview, undo, views"),
              "restored TOP, FRONT, RIGHT, HOME\n"
              "undone: restore the views\n"
              "the document has no views yet, and gets the built-in ones with its first change\n"
              "saved a.vnd\n");
    EXPECT_EQ(answer("newview"), "made the view \"NamedView\"\nsaved a.vnd\n");
}

TEST_F(NewDocumentTests, WhatStandsInTheirPlaceIsToldAndLeftAlone) {
    makeOld();
    execute("a.vnd", "INSERT INTO roots SELECT segment, 100, 'AssetSettings', 8 FROM roots");
    for (char const * const command :
         {"settings", "setting fitHome off", "resetsetting", "resetaxes", "views", "newview",
          "synchronize", "restoreview", "deleteview TOP"}) {
        Outcome const outcome = run(command);
        EXPECT_EQ(outcome.status, 1) << command;
        EXPECT_TRUE(contains(outcome.err, "something else stands under \"AssetSettings\""))
            << command << ": " << outcome.err;
    }
    answer("make");
    EXPECT_TRUE(contains(answer("tree"), "AssetSettings  #8  "));
    EXPECT_EQ(answer("check"), "nothing is wrong with a.vnd\n");
}

TEST_F(NewDocumentTests, SomethingElseInThePlaceOfTheViewsLeavesTheSettings) {
    makeOld();
    execute("a.vnd", "INSERT INTO roots SELECT segment, 100, 'NamedViews', 8 FROM roots");
    EXPECT_EQ(run("newview").err, "cannot make a view: something else stands under \"NamedViews\"\n"
                                  "nothing was saved\n");
    EXPECT_EQ(run("views").status, 1);
    answer("setting fitHome off");
    EXPECT_TRUE(contains(answer("settings"), "changed"));
    EXPECT_TRUE(contains(answer("tree"), "NamedViews  #8  "));
}

TEST_F(NewDocumentTests, ASecondSettingsEntityIsLeftAlone) {
    answer("new, setting fitHome off");
    execute("a.vnd", "CREATE TEMP TABLE copy AS SELECT * FROM CommonDataAssetSettings WHERE id = 2;"
                     "UPDATE copy SET id = 900;"
                     "INSERT INTO CommonDataAssetSettings SELECT * FROM copy;"
                     "UPDATE document SET next_entity = 1000");
    EXPECT_TRUE(contains(answer("setting fitHome on, tree"), "1 entity stands outside the tree"));
    EXPECT_TRUE(contains(answer("settings"), "fitHome                   on "));
}

} // namespace

} // namespace Vn::Console::Tests
