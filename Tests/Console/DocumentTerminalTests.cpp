// Documents in sessions at a real terminal.
// Not on Windows: a program can't sit at the other end of its terminals

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "Tests/Console/DocumentFixture.h"
#include "Tests/Support/TerminalSession.h"

namespace Vn::Console::Tests {

namespace {

class DocumentTerminalTests : public DocumentFixture {
protected:
    std::map<std::string, std::string> environment() const {
        return {{"HOME", directory().string()}, {"XDG_STATE_HOME", ""}};
    }
};

TEST_F(DocumentTerminalTests, QuitAsksOnceBeforeChangesAreLost) {
    TerminalSession session({}, environment());
    session.type("new\rmake\rquit\r");
    EXPECT_TRUE(session.waitFor("the new document has a change that isn't saved, \"make "
                                "Groups/CmnData[0]\"; Document.Save keeps it, quitting once more "
                                "doesn't\r\n"))
        << session.screen();
    session.type("quit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
}

TEST_F(DocumentTerminalTests, AnotherLineMakesTheQuestionNewAgain) {
    TerminalSession session({}, environment());
    session.type("new\rmake\rquit\r");
    ASSERT_TRUE(session.waitFor("quitting once more doesn't\r\n")) << session.screen();
    session.type("make\r");
    ASSERT_TRUE(session.waitFor("made Groups/CmnData[1] (#30)\r\n")) << session.screen();
    session.type("quit\r");
    ASSERT_TRUE(session.waitFor("has 2 changes that aren't saved")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("saveas a.vnd\r");
    ASSERT_TRUE(session.waitFor("saved ")) << session.screen();
    session.type("quit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
    EXPECT_EQ(places(document("tree").out),
              "Groups #1\nGroups/CmnData[0] #29\nGroups/CmnData[1] #30\n");
}

TEST_F(DocumentTerminalTests, TheEndOfTheInputAsksToo) {
    TerminalSession session({}, environment());
    session.type("new\rmake\r");
    ASSERT_TRUE(session.waitFor("made Groups/CmnData[0] (#29)\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("\x04");
    ASSERT_TRUE(session.waitFor("quitting once more doesn't\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("\x04");
    EXPECT_EQ(session.waitForEnd(), 0);
}

TEST_F(DocumentTerminalTests, ControlCEndsACommandAndKeepsTheSession) {
    TerminalSession session({}, environment());
    session.type("new\rmake\r");
    ASSERT_TRUE(session.waitFor("made Groups/CmnData[0] (#29)\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("add 0 1000000\r");
    ASSERT_TRUE(session.waitForRun());
    session.type("\x03");
    ASSERT_TRUE(session.waitFor("cannot add entities: it was interrupted; the document is as it "
                                "was before\r\n"))
        << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    // The next command runs, and nothing is left of the one before.
    session.type("make\rhistory\r");
    EXPECT_TRUE(session.waitFor("made Groups/CmnData[1]")) << session.screen();
    EXPECT_TRUE(session.waitFor("1  make Groups/CmnData[0]")) << session.screen();
    EXPECT_TRUE(session.waitFor("2  make Groups/CmnData[1]")) << session.screen();
    EXPECT_TRUE(session.waitFor("the document has changes and no file\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("saveas a.vnd\r");
    ASSERT_TRUE(session.waitFor("saved ")) << session.screen();
    session.type("tree\rquit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
    EXPECT_EQ(places(document("tree").out).find("Groups/CmnData[0]/"), std::string::npos);
}

TEST_F(DocumentTerminalTests, ControlCEndsALongTreeAndTheCommandsAfterIt) {
    ASSERT_EQ(document("new, make, add 0 20000").status, 0);
    std::string const before = readFile("a.vnd");
    // What isn't read from the terminal yet keeps the tree from coming to its end.
    TerminalSession session({"document", "a.vnd", "tree,", "make"}, environment());
    ASSERT_TRUE(session.waitFor("Groups  #1")) << session.screen();
    session.type("\x03");
    EXPECT_TRUE(session.waitFor("cannot show the tree: it was interrupted\r\n"));
    EXPECT_TRUE(session.waitFor("nothing was saved\r\n"));
    EXPECT_EQ(session.waitForEnd(), 130);
    EXPECT_EQ(readFile("a.vnd"), before);
}

TEST_F(DocumentTerminalTests, AFileThatChangedMeanwhileIsntOverwritten) {
    ASSERT_EQ(document("new").status, 0);
    TerminalSession first({}, environment());
    first.type("open a.vnd\r");
    ASSERT_TRUE(first.waitFor("with 28 entities\r\n")) << first.screen();
    ASSERT_EQ(document("make").status, 0);
    first.type("add . 3\rsave\r");
    EXPECT_TRUE(first.waitFor("cannot save the document")) << first.screen();
    EXPECT_EQ(places(document("tree").out), "Groups #1\nGroups/CmnData[0] #29\n");
}

} // namespace

} // namespace Vn::Console::Tests
