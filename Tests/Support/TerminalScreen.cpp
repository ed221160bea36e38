#include "Tests/Support/TerminalScreen.h"

#include <algorithm>
#include <cstdlib>

#include "Platform/Base/Text.h"

namespace Vn::Console::Tests {

TerminalScreen::TerminalScreen(std::size_t rows, std::size_t columns)
    : m_columns(columns), m_cells(rows, Row(columns, L" ")) {}

void TerminalScreen::write(std::string_view bytes) {
    while (!bytes.empty()) {
        char const c = bytes.front();
        std::size_t size = 1;
        if (c == '\x1B') {
            size = sequence(bytes);
        } else if (c == '\r') {
            m_column = 0;
            m_bHeldBack = false;
        } else if (c == '\n') {
            newRow();
        } else if (static_cast<unsigned char>(c) >= 0x20) {
            while (size < bytes.size() && (static_cast<unsigned char>(bytes[size]) & 0xC0) == 0x80)
                ++size;
            std::wstring const text = Text::fromUtf8(bytes.substr(0, size));
            if (!text.empty()) put(text.front());
        }
        bytes.remove_prefix(size);
    }
}

void TerminalScreen::put(wchar_t c) {
    auto const width = static_cast<std::size_t>(Text::displayWidth(static_cast<char32_t>(c)));
    if (width == 0) {
        std::size_t at = m_bHeldBack || m_column == 0 ? m_column : m_column - 1;
        if (m_cells[m_row][at].empty() && at > 0) --at;
        m_cells[m_row][at] += c;
        return;
    }
    if (m_bHeldBack || m_column + width > m_columns) {
        m_column = 0;
        newRow();
    }
    m_cells[m_row][m_column] = c;
    if (width == 2) m_cells[m_row][m_column + 1].clear();
    m_column += width;
    m_bHeldBack = m_column == m_columns;
    if (m_bHeldBack) --m_column;
}

void TerminalScreen::newRow() {
    m_bHeldBack = false;
    if (m_row + 1 < m_cells.size()) {
        ++m_row;
        return;
    }
    m_cells.erase(m_cells.begin());
    m_cells.emplace_back(m_columns, L" ");
}

std::size_t TerminalScreen::sequence(std::string_view bytes) {
    if (bytes.size() < 2 || bytes[1] != '[') return std::min<std::size_t>(bytes.size(), 2);
    std::size_t end = 2;
    while (end < bytes.size() && (bytes[end] < '@' || bytes[end] > '~')) ++end;
    if (end == bytes.size()) return end;
    std::string const number(bytes.substr(2, end - 2));
    if (number.starts_with('?')) return end + 1;
    char const letter = bytes[end];
    if (letter == 'J' || letter == 'K') {
        if (number == "2")
            eraseAll();
        else
            eraseAfterCursor(letter == 'J');
    } else {
        move(letter, std::max<std::size_t>(std::strtoul(number.c_str(), nullptr, 10), 1));
    }
    return end + 1;
}

void TerminalScreen::move(char letter, std::size_t count) {
    m_bHeldBack = false;
    if (letter == 'A') m_row -= std::min(m_row, count);
    if (letter == 'B') m_row = std::min(m_row + count, m_cells.size() - 1);
    if (letter == 'C') m_column = std::min(m_column + count, m_columns - 1);
    if (letter == 'D') m_column -= std::min(m_column, count);
    if (letter == 'H') m_row = m_column = 0;
}

void TerminalScreen::eraseAfterCursor(bool rowsToo) {
    std::fill(m_cells[m_row].begin() + static_cast<std::ptrdiff_t>(m_column), m_cells[m_row].end(),
              L" ");
    if (!rowsToo) return;
    for (std::size_t i = m_row + 1; i < m_cells.size(); ++i) m_cells[i].assign(m_columns, L" ");
}

void TerminalScreen::eraseAll() {
    for (Row & each : m_cells) each.assign(m_columns, L" ");
}

std::string TerminalScreen::row(std::size_t index) const {
    std::wstring text;
    for (std::wstring const & cell : m_cells.at(index)) text += cell;
    while (text.ends_with(L' ')) text.pop_back();
    return Text::toUtf8(text);
}

std::string TerminalScreen::text() const {
    std::string all;
    std::size_t rows = m_cells.size();
    while (rows > 0 && row(rows - 1).empty()) --rows;
    for (std::size_t i = 0; i < rows; ++i) all += row(i) + '\n';
    return all;
}

} // namespace Vn::Console::Tests
