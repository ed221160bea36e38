// The line that is typed, as a terminal shows it.
// Not on Windows: the terminal draws the line itself

#include <string>

#include <gtest/gtest.h>

#include "Console/Terminal/LineDisplay.h"
#include "Platform/Base/Text.h"
#include "Tests/Support/TerminalScreen.h"

namespace Vn::Console::Tests {

namespace {

// A small terminal, and the display that writes to it.
class LineDisplayTests : public testing::Test {
protected:
    static constexpr TerminalSize c_size{6, 10};

    void show(std::wstring const & line, std::size_t cursor) {
        m_screen.write(m_display.show(L"> ", line, cursor, c_size));
    }
    void show(std::wstring const & line) { show(line, line.size()); }

    void expectCursor(std::size_t row, std::size_t column) const {
        EXPECT_EQ(m_screen.cursorRow(), row) << m_screen.text();
        EXPECT_EQ(m_screen.cursorColumn(), column) << m_screen.text();
    }

    LineDisplay m_display;
    TerminalScreen m_screen{c_size.rows, c_size.columns};
};

TEST_F(LineDisplayTests, ALineStandsAfterItsPrompt) {
    show(L"");
    expectCursor(0, 2);
    show(L"2 in");
    EXPECT_EQ(m_screen.text(), "> 2 in\n");
    expectCursor(0, 6);
    show(L"2 in", 1);
    expectCursor(0, 3);
    show(L"22 in", 2);
    EXPECT_EQ(m_screen.text(), "> 22 in\n");
    expectCursor(0, 4);
    show(L"2", 1);
    EXPECT_EQ(m_screen.text(), "> 2\n");
}

TEST_F(LineDisplayTests, WhatIsAsItWasIsNotWrittenAgain) {
    show(L"2 i");
    EXPECT_EQ(m_display.show(L"> ", L"2 in", 4, c_size), "n");
    EXPECT_EQ(m_display.show(L"> ", L"2 in", 4, c_size), "");
    EXPECT_EQ(m_display.show(L"> ", L"2 in", 3, c_size), "\x1B[1D");
}

TEST_F(LineDisplayTests, ALongLineGoesOnInTheNextRow) {
    show(L"1234567");
    expectCursor(0, 9);
    show(L"12345678");
    expectCursor(1, 0);
    show(L"123456789");
    EXPECT_EQ(m_screen.text(), "> 12345678\n9\n");
    expectCursor(1, 1);
    show(L"123456789", 0);
    expectCursor(0, 2);
    show(L"0123456789", 1);
    EXPECT_EQ(m_screen.text(), "> 01234567\n89\n");
    expectCursor(0, 3);
    show(L"12345678", 8); // a row less
    EXPECT_EQ(m_screen.text(), "> 12345678\n");
    expectCursor(1, 0);
}

TEST_F(LineDisplayTests, AWideCharacterTakesTwoColumns) {
    show(L"\u6F22\u5B57");
    expectCursor(0, 6);
    show(L"\u6F22\u5B57", 1);
    expectCursor(0, 4);
    // It isn't parted at the end of a row.
    show(L"1234567\u6F22");
    EXPECT_EQ(m_screen.text(), "> 1234567\n\u6F22\n");
    expectCursor(1, 2);
    show(L"123456\U0001F600");
    EXPECT_EQ(m_screen.text(), "> 123456\U0001F600\n");
    expectCursor(1, 0);
}

TEST_F(LineDisplayTests, ACombiningMarkTakesNone) {
    show(L"e\u0301");
    expectCursor(0, 3);
    show(L"e\u0301x");
    EXPECT_EQ(m_screen.text(), "> e\u0301x\n");
    expectCursor(0, 4);
    show(L"e\u0301x", 2);
    expectCursor(0, 3);
    // A mark that comes later joins what stands there.
    show(L"e\u0301x\u0308");
    EXPECT_EQ(m_screen.text(), "> e\u0301x\u0308\n");
    expectCursor(0, 4);
    show(L"12345678");
    show(L"12345678\u0301");
    EXPECT_EQ(m_screen.text(), "> 12345678\u0301\n");
    expectCursor(1, 0);
}

TEST_F(LineDisplayTests, CharactersGoTogetherWithTheirMarks) {
    std::wstring const text = L"ae\u0301\u0308\U0001F600\uFE0F";
    std::size_t const ends[] = {1, 4, 6};
    std::size_t at = 0;
    for (std::size_t const end : ends) {
        std::size_t const next = LineDisplay::next(text, at);
        EXPECT_EQ(next, end);
        EXPECT_EQ(LineDisplay::previous(text, next), at);
        at = next;
    }
    EXPECT_EQ(LineDisplay::next(text, 6), 6u);
    EXPECT_EQ(LineDisplay::previous(text, 0), 0u);
    EXPECT_EQ(LineDisplay::previous(L"\u0301", 1), 0u);
}

TEST_F(LineDisplayTests, OfALineThatIsTooLongTheRowsAroundTheCursorAreShown) {
    std::wstring line = L"01234567"; // the rest of the first row
    for (wchar_t const c : std::wstring_view(L"abcdefgh")) line += std::wstring(10, c);
    show(line + L"xyz");
    EXPECT_EQ(m_screen.text(), "dddddddddd\neeeeeeeeee\nffffffffff\ngggggggggg\nhhhhhhhhhh\nxyz\n");
    expectCursor(5, 3);
    show(line + L"xyz", 8 + 41); // in the row of "e", which is shown
    expectCursor(1, 1);
    show(line + L"xyz", 0);
    EXPECT_EQ(m_screen.text(),
              "> 01234567\naaaaaaaaaa\nbbbbbbbbbb\ncccccccccc\ndddddddddd\neeeeeeeeee\n");
    expectCursor(0, 2);
    show(L"2");
    EXPECT_EQ(m_screen.text(), "> 2\n");
}

TEST_F(LineDisplayTests, ControlCharactersAreShownByLetters) {
    show(L"a\x1B\x7F\x85");
    EXPECT_EQ(m_screen.text(), "> a^[^?\uFFFD\n");
    expectCursor(0, 8);
}

TEST_F(LineDisplayTests, ALineMayHaveASecondOneForASearch) {
    show(L"2 in\nbck:2", 2);
    EXPECT_EQ(m_screen.text(), "> 2 in\nbck:2\n");
    expectCursor(0, 4);
    show(L"2 in");
    EXPECT_EQ(m_screen.text(), "> 2 in\n");
}

TEST_F(LineDisplayTests, TheEndIsAfterAllThatIsShown) {
    show(L"123456789", 1);
    m_screen.write(m_display.end());
    expectCursor(1, 1);
    m_screen.write("\r\n");
    m_display.forget();
    show(L"3");
    EXPECT_EQ(m_screen.text(), "> 12345678\n9\n> 3\n");
}

TEST_F(LineDisplayTests, InAWindowOfAnotherSizeAllIsDrawnAnewFromItsFirstRow) {
    show(std::wstring(25, L'1')); // 27 columns, which stand in nine rows of three
    std::string const text = m_display.show(L"> ", std::wstring(25, L'1'), 25, {20, 3});
    EXPECT_TRUE(text.starts_with("\r\x1B[9A\x1B[J> 1")) << text;
}

} // namespace

} // namespace Vn::Console::Tests
