// What a terminal shows after the bytes that a program wrote to it.

#ifndef VN_TESTS_SUPPORT_TERMINALSCREEN_H
#define VN_TESTS_SUPPORT_TERMINALSCREEN_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Vn::Console::Tests {

// Knows the moves and erasures that line editors use; other sequences are passed over.  A full row
// holds the cursor back until the next character, as terminals do, which goes to the next row.
class TerminalScreen {
public:
    TerminalScreen(std::size_t rows, std::size_t columns);

    // Takes what a program writes, in UTF-8 of whole characters.
    void write(std::string_view bytes);

    // The text of a row without the blanks at its end.
    std::string row(std::size_t index) const;
    // All rows, each with its end, without those at the end that are empty.
    std::string text() const;

    std::size_t cursorRow() const { return m_row; }
    std::size_t cursorColumn() const { return m_column; }

private:
    using Row = std::vector<std::wstring>; // a cell each; the second of a wide character is empty

    void put(wchar_t c);
    void newRow();
    std::size_t sequence(std::string_view bytes);
    void move(char letter, std::size_t count);
    void eraseAfterCursor(bool rowsToo);
    void eraseAll();

    std::size_t const m_columns;
    std::vector<Row> m_cells;
    std::size_t m_row = 0;
    std::size_t m_column = 0;
    bool m_bHeldBack = false; // the row is full, and the cursor stands on its last column
};

} // namespace Vn::Console::Tests

#endif
