// Sessions in a real terminal, as POSIX has it.
// Not on Windows: a program can't sit at the other end of its terminals

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TerminalSession.h"

namespace Vn::Console::Tests {

namespace {

namespace fs = std::filesystem;

// A terminal of someone who never used the console before.
class InteractiveTests : public testing::Test {
protected:
    std::map<std::string, std::string> environment() const {
        return {{"HOME", m_home.path().string()}, {"XDG_STATE_HOME", ""}};
    }
    fs::path history() const { return m_home.path() / ".local/state/vnconsole/history"; }

    Testing::TemporaryDirectory const m_home;
};

TEST_F(InteractiveTests, ExpressionIsEvaluatedWhenReturnIsPressed) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitFor("help tells more, quit ends.\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt());
    session.type("1 in + 1 cm\r");
    EXPECT_TRUE(session.waitFor("1.394 in\r\n"
                                "  internal 3.54 cm, units in, rebuilt 1 in + 1 cm\r\n"))
        << session.screen();
    session.type("quit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
}

TEST_F(InteractiveTests, PromptShowsTheExpectedUnit) {
    TerminalSession session({}, environment());
    session.type("unit in\r");
    ASSERT_TRUE(session.waitFor("expected unit: in (Length)\r\n")) << session.screen();
    EXPECT_TRUE(session.waitForPrompt("in> ")) << session.screen();
    session.type("2\r");
    EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, FailureIsShownWithCaretAndSuggestion) {
    TerminalSession session({}, environment());
    session.type("2CM\r");
    EXPECT_TRUE(session.waitFor("Parse error at character 1: \"CM\" isn't a unit, a function or a "
                                "constant\r\n  2CM\r\n   ^\r\n  did you mean cm?\r\n"))
        << session.screen();
}

TEST_F(InteractiveTests, TabCompletesTheOnlyWord) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2 kilomet\t");
    ASSERT_TRUE(session.waitFor("er")) << session.screen();
    session.type("\r");
    EXPECT_TRUE(session.waitFor("2.00 km\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("sqr\t16)\r");
    EXPECT_TRUE(session.waitFor("4.00\r\n")) << session.screen();
}

TEST_F(InteractiveTests, TabKnowsTheLanguagesAndTheFlagsOfCommands) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("language d\t\r");
    EXPECT_TRUE(session.waitFor("Sprache: de; es gibt en, de, fr, ja")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt());
    session.type("tree /V\t");
    EXPECT_TRUE(session.waitFor("erbose")) << session.screen();
}

TEST_F(InteractiveTests, TabAddsWhatAllWordsShare) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2 kil\t");
    ASSERT_TRUE(session.waitFor("o")) << session.screen();
    session.type("gram\r");
    EXPECT_TRUE(session.waitFor("2.00 kg\r\n")) << session.screen();
}

TEST_F(InteractiveTests, TabListsWordsThatShareNoMore) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("set scientific\t");
    EXPECT_TRUE(session.waitFor("scientificPrecision  scientificNotation  \r\n"))
        << session.screen();
    session.type("P\t5\r");
    EXPECT_TRUE(session.waitFor("scientificPrecision 5\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("Units.Mak\t3\r");
    EXPECT_TRUE(session.waitFor("simple units and there now are")) << session.screen();
}

TEST_F(InteractiveTests, ArrowUpBringsLinesBack) {
    TerminalSession session({}, environment());
    session.type("2 in\r");
    ASSERT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
    session.type("3 in\r");
    ASSERT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("\x1B[A\x1B[A + 1 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n  internal 7.62 cm, units in, rebuilt 2 in + 1 in\r\n"))
        << session.screen();
}

TEST_F(InteractiveTests, HistoryIsKeptForTheNextSession) {
    {
        TerminalSession session({}, environment());
        session.type("5 ft \xC2\xB0\r");
        session.type("7 in\r");
        ASSERT_TRUE(session.waitFor("7.00 in\r\n")) << session.screen();
        session.type("quit\r");
        ASSERT_EQ(session.waitForEnd(), 0);
    }
    EXPECT_TRUE(fs::exists(history()));
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("\x1B[A\x1B[A\r"); // "quit" was the last
    EXPECT_TRUE(session.waitFor("7.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, StateDirectoryIsTheUsersChoice) {
    Testing::TemporaryDirectory const state;
    std::map<std::string, std::string> chosen = environment();
    chosen["XDG_STATE_HOME"] = state.path().string();
    TerminalSession session({}, chosen);
    session.type("2 in\r");
    ASSERT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
    session.type("quit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
    EXPECT_TRUE(fs::exists(state.path() / "vnconsole/history"));
    EXPECT_FALSE(fs::exists(history()));
}

TEST_F(InteractiveTests, WithoutAPlaceForTheHistoryNothingIsSaid) {
    std::ofstream(m_home.path() / "file") << "not a directory";
    std::map<std::string, std::string> chosen = environment();
    chosen["XDG_STATE_HOME"] = (m_home.path() / "file").string();
    TerminalSession session({}, chosen);
    session.type("2 in\r");
    ASSERT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    session.type("\x1B[A\r");
    EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
    session.type("quit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
    EXPECT_EQ(session.screen().find("file"), std::string::npos) << session.screen();
}

TEST_F(InteractiveTests, LineCanBeEdited) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2 ing\x7F\x01"
                 "1\x05 + 0.5 in\r"); // erase, to the beginning, to the end
    EXPECT_TRUE(session.waitFor("12.50 in\r\n")) << session.screen();
}

// In each form that a terminal may send.
TEST_F(InteractiveTests, KeysBesideTheLettersMoveTheCursor) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    for (char const * const home : {"\x1B[H", "\x1BOH", "\x1B[1~", "\x1B[7~"}) {
        session.type(std::string("2 in") + home + "1\r");
        EXPECT_TRUE(session.waitFor("12.00 in\r\n")) << home << session.screen();
        ASSERT_TRUE(session.waitForPrompt());
    }
    for (char const * const end : {"\x1B[F", "\x1BOF", "\x1B[4~", "\x1B[8~"}) {
        session.type(std::string("3 i\x01") + end + "n\r");
        EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << end << session.screen();
        ASSERT_TRUE(session.waitForPrompt());
    }
    for (char const * const left : {"\x1B[1;5D", "\x1B[5D", "\x1BOd", "\x1B[1;3D"}) {
        session.type(std::string("2 + 3 + 4") + left + left + "5\r");
        EXPECT_TRUE(session.waitFor("59.00\r\n")) << left << session.screen();
        ASSERT_TRUE(session.waitForPrompt());
    }
    for (char const * const right : {"\x1B[1;5C", "\x1B[5C", "\x1BOc", "\x1B[1;3C"}) {
        session.type(std::string("2 in + 3 in\x01") + right + "7\r");
        EXPECT_TRUE(session.waitFor("30.00 in\r\n")) << right << session.screen();
        ASSERT_TRUE(session.waitForPrompt());
    }
    session.type("72 in\x01\x1B[3~\r"); // erases
    EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, PagesGoThroughLinesThatBeginSo) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    for (char const * const line : {"21 in", "34 in", "22 in", "5 in"}) {
        session.type(std::string(line) + "\r");
        ASSERT_TRUE(session.waitForPrompt()) << session.screen();
    }
    session.type("2\x1B[5~\x1B[5~\r");
    EXPECT_TRUE(session.waitFor("21.00 in\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2\x1B[5~\x1B[5~\x1B[6~ + 1 in\r");
    EXPECT_TRUE(session.waitFor("22.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, KeysWithoutAMeaningTypeNothing) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    for (char const * const key :
         {"\x1B[2~", "\x1B[15~", "\x1B[24~", "\x1BOP", "\x1BOS", "\x1B[1;2A", "\x1B[1;5B",
          "\x1B[1;6D", "\x1B[5;5~", "\x1B[Z", "\x1B[24;8~", "\x1B[1;5H",
          // those that hardly a terminal sends too
          "\x1Bx", "\x1BX", "\x1B\xC3\xA4", "\x1B[", "\x1B[[A", "\x1B[99;99;99u", "\x1B[?1;2c",
          "\x1B[<0;10;20M", "\x1B[27;5;9~", "\x1B[1 q", "\x1B\x1B[A", "\x1BO5P", "\x1BOj",
          "\x1B]11;rgb:0000/0000/0000\x1B\\", "\x1B]0;title\x07", "\x1BP1$r0m\x1B\\",
          "\x1B[200~\x1B[201~", "\x1B[201~"}) {
        session.type(std::string("2") + key);
        // Who types doesn't go on at once.
        if (std::string_view(key) == "\x1B[") ::usleep(200000);
        session.type(" in\r");
        EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << key + 1 << session.screen();
        ASSERT_TRUE(session.waitForPrompt());
    }
}

// The terminal was asked to tell them from what is typed.
TEST_F(InteractiveTests, PastedTextIsText) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    ASSERT_TRUE(session.waitForRaw("\x1B[?2004h"));
    // A tab completes nothing, and no key does what it does else.
    session.type("\x1B[200~2 kilomet\ter\x01\x15\x1B[201~");
    EXPECT_TRUE(session.waitForRow("> 2 kilomet er", 14)) << session.screen();
    session.type("\x03\x1B[200~3 in\r\n\x1B[201~");
    EXPECT_TRUE(session.waitForRow("> 3 in", 6)) << session.screen(); // which waits for Return
    session.type(" + 1 in\r");
    EXPECT_TRUE(session.waitFor("4.00 in\r\n")) << session.screen();
    EXPECT_TRUE(session.waitForRaw("\x1B[?2004l"));
    session.type("quit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
}

TEST_F(InteractiveTests, LinesThatArePastedAreRunButTheLast) {
    TerminalSession session({}, environment());
    for (char const * const end : {"\r", "\n", "\r\n"}) {
        ASSERT_TRUE(session.waitForPrompt());
        std::string pasted = "\x1B[200~";
        for (char const * const line : {"2 in", "3 in", "\t"}) (pasted += line) += end;
        session.type(pasted += "5 \u2033\x1B[201~");
        EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
        EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
        EXPECT_TRUE(session.waitForRow("> 5 \u2033", 5)) << session.screen();
        session.type("\x03"
                     "6 in\r");
        EXPECT_TRUE(session.waitFor("6.00 in\r\n")) << session.screen();
    }
}

TEST_F(InteractiveTests, TheEscapeKeyByItselfTakesNoOther) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2 in\x1B");
    ::usleep(200000);
    session.type("\r");
    EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
    ASSERT_TRUE(session.waitForPrompt());
    session.type("bogus\x1B\x03"
                 "3 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
}

// No shell is there that could go on with it, so the system lets it run; the line is drawn anew.
TEST_F(InteractiveTests, ControlZLeavesTheTerminalAndComesBack) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("1 in + ");
    ASSERT_TRUE(session.waitFor("1 in + ")) << session.screen();
    session.type("\x1A");
    ASSERT_TRUE(session.waitForRaw("\x1B[?2004l\r\n")) << session.screen();
    ASSERT_TRUE(session.waitFor("> 1 in + ")) << session.screen();
    session.type("2 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, ATerminalThatMovesNoCursorIsSentNoSequences) {
    std::map<std::string, std::string> chosen = environment();
    chosen["TERM"] = "dumb";
    TerminalSession session({}, chosen);
    ASSERT_TRUE(session.waitFor("> "));
    session.type("2 in\r");
    EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
    ASSERT_TRUE(session.waitFor("> "));
    session.type("bogus\x03"
                 "3 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
    EXPECT_FALSE(session.wrote("\x1B"));
    session.type("\x04");
    EXPECT_EQ(session.waitForEnd(), 0);
}

// As when the terminal forgets to tell.
TEST_F(InteractiveTests, ControlCEndsAPaste) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("\x1B[200~2 in\r3 in\x03"
                 "4 in\r");
    EXPECT_TRUE(session.waitFor("4.00 in\r\n")) << session.screen();
    EXPECT_EQ(session.screen().find("2.00 in"), std::string::npos) << session.screen();
}

TEST_F(InteractiveTests, TheCursorStandsAfterWhatWasTyped) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("\u6F22\u5B57 e\u0301");
    EXPECT_TRUE(session.waitForRow("> \u6F22\u5B57 e\u0301", 8)) << session.screen();
    session.type("\x1B[D"); // over the character with its mark
    EXPECT_TRUE(session.waitForRow("> \u6F22\u5B57 e\u0301", 7)) << session.screen();
    session.type("\x1B[D\x1B[D");
    EXPECT_TRUE(session.waitForRow("> \u6F22\u5B57 e\u0301", 4)) << session.screen();
    session.type("\x1B[C\x1B[C\x1B[C\x7F"); // which goes with its mark
    EXPECT_TRUE(session.waitForRow("> \u6F22\u5B57", 7)) << session.screen();
    session.type("\U0001F600\U0001F1E9\x02\x02\x1B[3~");
    EXPECT_TRUE(session.waitForRow("> \u6F22\u5B57 \U0001F1E9", 7)) << session.screen();
    session.type("\x01\x04"); // to the beginning, and what stands there goes
    EXPECT_TRUE(session.waitForRow("> \u5B57 \U0001F1E9", 2)) << session.screen();
}

TEST_F(InteractiveTests, ALineMayBeLongerThanTheWindow) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.resize(5, 20);
    std::string line = "1";
    for (int i = 0; i < 500; ++i) line += "+1";
    session.type(line);
    // 1003 columns in rows of 20.
    EXPECT_TRUE(session.waitForRow("1+1", 3, 5, 20));
    session.type("\r");
    EXPECT_TRUE(session.waitFor("501.00\r\n")) << session.screen();
}

// As the shell has it: the line is there again.
TEST_F(InteractiveTests, ControlLClearsTheScreen) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2 in\x0C");
    ASSERT_TRUE(session.waitForRaw("\x1B[2J> 2 in"));
    session.type(" + 1 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, ControlRLooksForALine) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("21 in\r");
    ASSERT_TRUE(session.waitForPrompt());
    session.type("5 in\r");
    ASSERT_TRUE(session.waitForPrompt());
    session.type("\x12"
                 "21");
    ASSERT_TRUE(session.waitFor("bck:21")) << session.screen();
    session.type("\r");
    EXPECT_TRUE(session.waitFor("21.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, ALineIsDrawnAnewInAWindowOfAnotherSize) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    for (int i = 0; i < 3; ++i) { // each time
        session.type("1 in + ");
        ASSERT_TRUE(session.waitFor("1 in + ")) << session.screen();
        session.resize(30, static_cast<unsigned short>(50 + i));
        ASSERT_TRUE(session.waitFor("> 1 in + ")) << session.screen();
        session.type("2 in\r");
        ASSERT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
        ASSERT_TRUE(session.waitForPrompt());
    }
}

TEST_F(InteractiveTests, ALineThatFillsRowsIsDrawnAnewFromItsFirst) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type(std::string(50, '1'));
    ASSERT_TRUE(session.waitFor(std::string(50, '1'))) << session.screen();
    session.resize(30, 20);
    // Two for the prompt and fifty, in rows of twenty.
    ASSERT_TRUE(session.waitForRaw("\r\x1B[2A\x1B[J"));
    session.type("\r");
    EXPECT_TRUE(session.waitFor("1.111E+49")) << session.screen();
}

TEST_F(InteractiveTests, AStoppedSessionGoesOnWithItsLine) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("1 in + ");
    ASSERT_TRUE(session.waitFor("1 in + ")) << session.screen();
    session.signal(SIGSTOP);
    session.signal(SIGCONT);
    ASSERT_TRUE(session.waitFor("> 1 in + ")) << session.screen();
    session.type("2 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, BytesThatAreNotUtf8TypeNothing) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2\xFF \xC2i\x80n\xE2\x82\r");
    EXPECT_TRUE(session.waitFor("2.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, CharactersBeyondAsciiAreTyped) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("90\xC2\xB0\r");
    EXPECT_TRUE(session.waitFor("90.0 deg\r\n")) << session.screen();
}

TEST_F(InteractiveTests, ControlDEndsTheSession) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("\x04");
    EXPECT_EQ(session.waitForEnd(), 0);
}

TEST_F(InteractiveTests, ControlCAbandonsTheLine) {
    TerminalSession session({}, environment());
    ASSERT_TRUE(session.waitForPrompt());
    session.type("2 bogus\x03"
                 "3 in\r");
    EXPECT_TRUE(session.waitFor("3.00 in\r\n")) << session.screen();
}

TEST_F(InteractiveTests, BadLinesDoNotMakeTheStatusBad) {
    TerminalSession session({}, environment());
    session.type("bogus\rquit\r");
    EXPECT_EQ(session.waitForEnd(), 0);
}

// Who types sees the lines, and needs no numbers.
TEST(TypedEvalTests, LinesAreNotNumbered) {
    TerminalSession session({"eval"});
    ASSERT_TRUE(session.waitFor("each on a line; the end of the input ends.\r\n"));
    session.type("CM\r");
    EXPECT_TRUE(session.waitFor("Abrupt Termination")) << session.screen();
    EXPECT_EQ(session.screen().find("line 1:"), std::string::npos) << session.screen();
    session.type("\x04");
    EXPECT_EQ(session.waitForEnd(), 1);
}

TEST(ProgressTests, LinesAreCountedOnATerminal) {
    std::string input;
    for (int i = 0; i < 2500; ++i) input += "{\"text\":\"2\"}\n";
    Testing::TemporaryFile const file(input);
    TerminalSession session({"batch", file.text()});
    EXPECT_TRUE(session.waitFor("1000 lines\r"));
    EXPECT_TRUE(session.waitFor("2000 lines\r"));
    EXPECT_TRUE(session.waitFor("2500 lines\r\n"));
    EXPECT_EQ(session.waitForEnd(), 0);
}

} // namespace

} // namespace Vn::Console::Tests
