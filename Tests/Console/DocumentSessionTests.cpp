// Documents in sessions from a pipe.

#include <gtest/gtest.h>
#include <sstream>

#include "Console/Documents/CommandTable.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/TextCommands.h"
#include "Console/Session/Completion.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

class DocumentSessionTests : public DocumentFixture {
protected:
    static Outcome session(std::string const & lines) { return runConsole({}, lines); }
    static std::string tree() { return document("tree").out; }
};

TEST_F(DocumentSessionTests, WhatIsUndoneAndRedoneIsTheSameTree) {
    Outcome const outcome =
        session("new\nmake\nmake 0\nadd 0/0 3\nmake\nmove 1 before 0\ntree .\n"
                "undo\nundo\nundo\nundo\nundo\ntree .\nredo\nredo\nredo\nredo\nredo\ntree .\n"
                "saveas a.vnd\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> trees;
    for (std::size_t at = 0; (at = outcome.out.find("Groups  #1  ", at)) != std::string::npos;) {
        std::size_t end = at;
        while (outcome.out.compare(end, 6, "Groups") == 0) end = outcome.out.find('\n', end) + 1;
        trees.push_back(outcome.out.substr(at, end - at));
        at = end;
    }
    ASSERT_EQ(trees.size(), 3u);
    EXPECT_EQ(places(trees[0]), "Groups #1\n"
                                "Groups/CmnData[0] #34\n"
                                "Groups/CmnData[1] #29\n"
                                "Groups/CmnData[1]/CmnData[0] #30\n"
                                "Groups/CmnData[1]/CmnData[0]/CmnData[0] #31\n"
                                "Groups/CmnData[1]/CmnData[0]/CmnData[1] #32\n"
                                "Groups/CmnData[1]/CmnData[0]/CmnData[2] #33\n");
    EXPECT_EQ(places(trees[1]), "Groups #1\n");
    EXPECT_EQ(trees[2], trees[0]);
    EXPECT_EQ(document("tree .").out, trees[0]);
}

TEST_F(DocumentSessionTests, LinesOfWindowsAreLines) {
    std::string const lines =
        "new\nmake /Custom\nadd 0 2\n\ntree\nremove 0/1\nsaveas \"a b.vnd\"\n";
    std::string windows;
    for (char const c : lines) windows += c == '\n' ? std::string("\r\n") : std::string(1, c);
    Outcome const outcome = session(lines);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::filesystem::remove(directory() / "a b.vnd");
    Outcome const same = session(windows);
    EXPECT_EQ(same.status, 0) << same.err;
    EXPECT_EQ(same.out, outcome.out);
    EXPECT_TRUE(std::filesystem::exists(directory() / "a b.vnd"));
}

// Each kind of change, by itself.
TEST_F(DocumentSessionTests, EveryChangeIsTakenBackAndMadeAgain) {
    ASSERT_EQ(session("new\nmake\nmake 0\nmake\nadd 0/0 3\nsaveas a.vnd\n").status, 0);
    std::string const before = tree();
    for (char const * const change :
         {"make 0", "add 1 5", "remove 0/0/1", "remove 1", "move 0/0/0 after 0/0/2",
          "move 0/0/0 before 1", "move 0/0 into 1", "move 1 into 0/0", "delete 0"}) {
        std::string const text(change);
        std::string const once = session("open a.vnd\n" + text + "\ntree\n").out;
        std::string const after = once.substr(once.find("Groups  #1  "));
        EXPECT_NE(after, before) << change;
        Outcome const outcome =
            session("open a.vnd\n" + text + "\nundo\ntree\nredo\ntree\nundo\nhistory\n");
        std::size_t const undone = outcome.out.find("Groups  #1  ");
        ASSERT_NE(undone, std::string::npos) << change << outcome.err;
        EXPECT_EQ(outcome.out.substr(undone, before.size()), before) << change;
        std::size_t const redone = outcome.out.find("Groups  #1  ", undone + before.size());
        EXPECT_EQ(outcome.out.substr(redone, after.size()), after) << change;
        // What is undone isn't a change that could be lost.
        EXPECT_EQ(outcome.status, 0) << change << outcome.err;
        EXPECT_NE(outcome.out.find("the document is as a.vnd has it\n"), std::string::npos);
    }
}

TEST_F(DocumentSessionTests, TheRootGroupCantBeUndone) {
    Outcome const outcome = session("new\nundo\ntree\nmake\nundo\ntree\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.err,
        "line 2: cannot undo: nothing was changed since the document was opened; the history isn't "
        "saved, and no earlier session can be undone\n");
    EXPECT_EQ(outcome.out.substr(outcome.out.rfind("Groups  #1")).substr(0, 12), "Groups  #1  ");
}

TEST_F(DocumentSessionTests, WithoutADocumentCommandsSayHowToGetOne) {
    for (char const * const line : {"save", "saveas b.vnd", "tree", "undo", "redo", "history",
                                    "make", "add 0", "remove 0", "move 0 before 1", "delete 0"}) {
        Outcome const outcome = session(std::string(line) + "\n");
        EXPECT_EQ(outcome.status, 1) << line;
        EXPECT_EQ(outcome.err.substr(0, 15), "line 1: cannot ") << line;
        EXPECT_NE(
            outcome.err.find(": no document is open; Document.New makes one, and Document.Open "
                             "FILE opens one\n"),
            std::string::npos)
            << line;
    }
    EXPECT_EQ(session("check\n").err, "line 1: cannot check: there is no file; name one\n");
}

TEST_F(DocumentSessionTests, UnsavedChangesArentLostByOpeningAnother) {
    ASSERT_EQ(document("new").status, 0);
    Outcome const outcome = session("open a.vnd\nmake\nadd 0 2\nnew\nopen a.vnd\nhistory\n"
                                    "new /force\nhistory\nopen a.vnd\ntree .\n");
    EXPECT_EQ(outcome.status, 1);
    std::string const why = "a.vnd has 2 changes that aren't saved, the last \"add 2 entities to "
                            "Groups/CmnData[0]\"; save the document, or lose them with /Force\n";
    EXPECT_EQ(outcome.err, "line 4: cannot make a new document: " + why +
                               "line 5: cannot open the document: " + why);
    EXPECT_EQ(outcome.out.substr(outcome.out.find("   0")),
              "   0  where the history begins             saved\n"
              "   1  make Groups/CmnData[0]\n"
              ">  2  add 2 entities to Groups/CmnData[0]\n"
              "the document differs from a.vnd\n"
              "a new document with an empty group \"Groups\"\n"
              ">  0  where the history begins\n"
              "the document is new and empty, and has no file\n"
              "opened a.vnd with 28 entities\n"
              "Groups  #1  group  empty\n");
}

TEST_F(DocumentSessionTests, UnsavedChangesAreToldAtTheEnd) {
    for (char const * const end : {"", "quit\n"}) {
        Outcome const lost = session(std::string("new\nmake\n") + end);
        EXPECT_EQ(lost.status, 1);
        EXPECT_EQ(lost.err, "the new document has a change that isn't saved, \"make "
                            "Groups/CmnData[0]\"; what isn't saved is lost\n");
        EXPECT_EQ(session(std::string("new\nmake\nundo\n") + end).status, 0);
        EXPECT_EQ(session(std::string("new\nmake\nsaveas b.vnd /force\n") + end).status, 0);
    }
}

#ifndef _WIN32 // where the shell doesn't limit the memory of a process

// Whatever the limit is, a command that has no memory is taken back, and what was there before is
// saved.
TEST_F(DocumentSessionTests, ACommandThatRunsOutOfMemoryIsTakenBack) {
    unsigned refused = 0;
    for (int const limit : {60'000, 80'000, 100'000, 140'000}) {
        Outcome const outcome = runShell(
            "ulimit -v " + std::to_string(limit) + "; \"$VNCONSOLE\"",
            "new\nmake\nadd 0 3\nadd 0 1000000\nadd 0 2\nsaveas b.vnd /force\nundo\nsave\n");
        bool const isRefused = outcome.err.find("memory ran out") != std::string::npos;
        if (outcome.out.find("a new document") == std::string::npos) continue; // not even that
        if (!isRefused) break;
        ++refused;
        EXPECT_EQ(
            outcome.err,
            "line 4: cannot add entities: memory ran out; the document is as it was before\n");
        EXPECT_EQ(document("check", "b.vnd").status, 0);
        EXPECT_EQ(places(document("tree", "b.vnd").out), "Groups #1\n"
                                                         "Groups/CmnData[0] #29\n"
                                                         "Groups/CmnData[0]/CmnData[0] #30\n"
                                                         "Groups/CmnData[0]/CmnData[1] #31\n"
                                                         "Groups/CmnData[0]/CmnData[2] #32\n");
    }
    if (refused == 0) GTEST_SKIP() << "memory can't be limited here";
}

#endif

TEST_F(DocumentSessionTests, TheSavedStateIsFoundByUndoAndLostByOtherChanges) {
    Outcome const outcome =
        session("new\nmake\nmake\nsaveas a.vnd\nundo\nhistory\nmake\nhistory\nquit\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out.substr(outcome.out.find("undone: ")),
              "undone: make Groups/CmnData[1]\n"
              "   0  where the history begins\n"
              ">  1  make Groups/CmnData[0]\n"
              "   2  make Groups/CmnData[1]    undone, saved\n"
              "the document differs from a.vnd\n"
              "made Groups/CmnData[1] (#31)\n"
              "   0  where the history begins\n"
              "   1  make Groups/CmnData[0]\n"
              ">  2  make Groups/CmnData[1]\n"
              "the document differs from a.vnd\n");
    EXPECT_EQ(outcome.err, "a.vnd has changes that aren't saved; what isn't saved is lost\n");
}

TEST_F(DocumentSessionTests, SavingSaysWhatItDid) {
    Outcome const outcome = session("new\nsave\nsaveas a.vnd\nsave\nmake\nsave\nsaveas a.vnd\nnew\n"
                                    "saveas a.vnd\nsaveas a.vnd /force\nsaveas b.vnd\n"
                                    "saveas \"\"\nsaveas no/a.vnd\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "a new document with an empty group \"Groups\"\n"
                           "saved a.vnd\n"
                           "a.vnd is up to date\n"
                           "made Groups/CmnData[0] (#29)\n"
                           "saved a.vnd\n"
                           "a.vnd is up to date\n"
                           "a new document with an empty group \"Groups\"\n"
                           "saved a.vnd\n"
                           "saved b.vnd\n");
    std::string const expected =
        "line 2: cannot save: the document has no file yet; Document.SaveAs FILE gives it one\n"
        "line 9: cannot save: a.vnd is there already; /Force replaces it\n"
        "line 12: cannot save: the name of the file is empty\n"
        "line 13: cannot save the document 'no/a.vnd'";
    EXPECT_EQ(outcome.err.substr(0, expected.size()), expected);
}

TEST_F(DocumentSessionTests, AFailedOpenKeepsTheDocument) {
    Outcome const outcome =
        session("new\nsaveas a.vnd\nopen nothing.vnd\nopen \"a\\\"b\"\nhistory\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.out.find("the document is as a.vnd has it\n"), std::string::npos);
    EXPECT_EQ(outcome.err,
              "line 3: cannot open the document 'nothing.vnd': not found: there is no such file\n"
              "line 4: cannot open the document 'a\"b': not found: there is no such file\n");
    EXPECT_EQ(session(std::string("open a\0b\n", 9)).err,
              "line 1: cannot open the document: \"a\u2400b\" isn't a file name\n");
}

TEST_F(DocumentSessionTests, CheckLooksAtTheFileOfTheDocumentOrAnother) {
    Outcome const outcome = session("new\nsaveas a.vnd\ncheck\ncheck a.vnd\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.substr(outcome.out.find("nothing")),
              "nothing is wrong with a.vnd\nnothing is wrong with a.vnd\n");
    execute("a.vnd", "UPDATE roots SET entity = 99 WHERE key = 'Groups'");
    Outcome const damaged = session("check a.vnd\n");
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.err,
              "line 1: a.vnd is damaged:\n  the root Groups: there is no such entity\n");
}

TEST_F(DocumentSessionTests, TheExamplesOfHelpFollowOneAnother) {
    std::string const help = session("help documents\n").out;
    std::string lines;
    std::istringstream text(help);
    std::size_t count = 0;
    for (std::string line; std::getline(text, line);) {
        if (line.substr(0, 2) != "  ") continue;
        ++count;
        std::string const example = line.substr(2, line.find("  ", 2) - 2);
#ifdef _WIN32 // where nothing is drawn
        if (example.starts_with("picture ")) continue;
#endif
        lines += example + '\n';
    }
    EXPECT_EQ(count, 39u);
    Outcome const outcome = session(lines);
    EXPECT_EQ(outcome.status, 0) << lines;
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("nothing is wrong with a.vnd\n"), std::string::npos);
}

TEST_F(DocumentSessionTests, HelpTellsOfEveryCommand) {
    EXPECT_EQ(
        session("help move\nhelp Document.Tree\n").out,
        "  move <Path> before|after|into <Path>  Moves an entity before or after another, or "
        "to the end of a group\n"
        "  tree [Path] [/Verbose] [/Json]  Lists the entities, or those at a path and below it\n");
    for (DocumentCommand const & command : documentCommands()) {
        Outcome const outcome = session(std::string("help ") + command.alias + "\n");
        EXPECT_EQ(outcome.status, 0) << command.alias;
        EXPECT_NE(outcome.out.find(Text::toUtf8(command.meaning)), std::string::npos)
            << command.alias;
    }
}

TEST_F(DocumentSessionTests, CommandsAreCompletedAndListed) {
    Initializer::runAll();
    auto const texts = [](wchar_t const * line) {
        std::vector<std::wstring> all;
        for (auto const & candidate : completeSessionLine(line).candidates)
            all.push_back(candidate.text);
        return all;
    };
    EXPECT_TRUE(texts(L"Groups.").empty());
    {
        DocumentSession session;
        DocumentTextCommands const commands(session);
        EXPECT_EQ(texts(L"Groups."),
                  (std::vector<std::wstring>{L"Groups.Make", L"Groups.Add", L"Groups.Remove",
                                             L"Groups.Move", L"Groups.Delete"}));
        EXPECT_EQ(texts(L"document.s"),
                  (std::vector<std::wstring>{L"Document.Show", L"Document.Set", L"Document.Save",
                                             L"Document.SaveAs"}));
        EXPECT_EQ(texts(L"sav"), (std::vector<std::wstring>{L"save", L"saveas"}));
        EXPECT_EQ(texts(L"und"), std::vector<std::wstring>{L"undo"});
        EXPECT_EQ(texts(L"help dele"), (std::vector<std::wstring>{L"delete", L"deleteview"}));
        EXPECT_EQ(texts(L"setting sceneF"), std::vector<std::wstring>{L"sceneFront"});
        EXPECT_EQ(texts(L"Settings.Reset fit"), std::vector<std::wstring>{L"fitHome"});
    }
    EXPECT_TRUE(texts(L"Groups.").empty());
}

} // namespace

} // namespace Vn::Console::Tests
