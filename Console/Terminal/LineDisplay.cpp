#include "Console/Terminal/LineDisplay.h"

#include <algorithm>

#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

constexpr wchar_t c_newRow = L'\n';

bool isControl(wchar_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

std::size_t widthOf(wchar_t c) {
    return static_cast<std::size_t>(Text::displayWidth(static_cast<char32_t>(c)));
}

// Whether a character takes no column of its own.
bool belongsToTheOneBefore(wchar_t c) { return !isControl(c) && widthOf(c) == 0; }

// As a terminal can show it.
std::wstring shown(wchar_t c) {
    if (c == c_newRow || !isControl(c)) return std::wstring(1, c);
    if (c >= 0x80) return L"\uFFFD";
    return {L'^', static_cast<wchar_t>(c ^ 0x40)};
}

std::string sequence(std::size_t count, char letter) {
    return count == 0 ? std::string() : "\x1B[" + std::to_string(count) + letter;
}

} // namespace

std::size_t LineDisplay::next(std::wstring_view text, std::size_t position) {
    if (position >= text.size()) return text.size();
    ++position;
    while (position < text.size() && belongsToTheOneBefore(text[position])) ++position;
    return position;
}

std::size_t LineDisplay::previous(std::wstring_view text, std::size_t position) {
    position = std::min(position, text.size());
    while (position > 0 && belongsToTheOneBefore(text[position - 1])) --position;
    return position > 0 ? position - 1 : 0;
}

LineDisplay::Glyphs LineDisplay::glyphsOf(std::wstring_view text) {
    Glyphs glyphs;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!glyphs.empty() && belongsToTheOneBefore(text[i])) {
            glyphs.back().text += text[i];
            continue;
        }
        Glyph glyph;
        glyph.text = shown(text[i]);
        glyph.width =
            text[i] == c_newRow ? 0 : static_cast<std::size_t>(Text::displayWidth(glyph.text));
        glyph.begin = i;
        glyphs.push_back(std::move(glyph));
    }
    return glyphs;
}

LineDisplay::Place LineDisplay::lay(Glyphs & glyphs, std::size_t columns) {
    Place place;
    for (Glyph & glyph : glyphs) {
        if (place.column > 0 && place.column + glyph.width > columns) place = {place.row + 1, 0};
        glyph.place = place;
        place.column += glyph.width;
        if (glyph.text.front() == c_newRow) place = {place.row + 1, 0};
    }
    // The cursor needs a place after a row that is full.
    if (place.column >= columns) place = {place.row + 1, 0};
    return place;
}

std::size_t LineDisplay::firstRow(Place cursor, Place end, std::size_t rows) const {
    if (end.row < rows) return 0;
    std::size_t const first = std::min(m_firstRow, end.row + 1 - rows);
    if (cursor.row < first) return cursor.row;
    return std::max(first, cursor.row + 1 < rows ? 0 : cursor.row + 1 - rows);
}

std::string LineDisplay::goTo(Place place) {
    std::string text;
    if (place == m_cursor) return text;
    if (place.row < m_cursor.row) text += sequence(m_cursor.row - place.row, 'A');
    if (place.row > m_cursor.row) text += sequence(place.row - m_cursor.row, 'B');
    if (m_cursor.column >= m_size.columns || place.column == 0) {
        text += '\r' + sequence(place.column, 'C'); // after a full row terminals differ
    } else if (place.column < m_cursor.column) {
        text += sequence(m_cursor.column - place.column, 'D');
    } else {
        text += sequence(place.column - m_cursor.column, 'C');
    }
    m_cursor = place;
    return text;
}

std::string LineDisplay::write(Glyphs const & glyphs, std::size_t from) {
    std::string text;
    for (std::size_t i = from; i < glyphs.size(); ++i) {
        Glyph const & glyph = glyphs[i];
        // A wide character leaves a column free at the end of a row.
        if (glyph.place.row > m_cursor.row && m_cursor.column < m_size.columns)
            text.append(m_size.columns - m_cursor.column, ' ');
        m_cursor = {glyph.place.row, glyph.place.column + glyph.width};
        if (glyph.text.front() == c_newRow) {
            text += "\x1B[K\r\n";
            m_cursor = {glyph.place.row + 1, 0};
        } else {
            text += Text::toUtf8(glyph.text);
        }
    }
    return text;
}

std::string LineDisplay::clear(std::size_t columns) {
    // The terminal has folded the rows anew itself, or left them alone if they fit.
    Glyphs before;
    for (Glyph const & glyph : m_shown) {
        bool const isBefore =
            glyph.place.row < m_cursor.row ||
            (glyph.place.row == m_cursor.row && glyph.place.column < m_cursor.column);
        if (isBefore) before.push_back(glyph);
    }
    std::size_t const row = lay(before, columns).row;
    m_cursor = {};
    return '\r' + sequence(row, 'A') + "\x1B[J";
}

std::string LineDisplay::show(std::wstring_view prompt, std::wstring_view line, std::size_t cursor,
                              TerminalSize size) {
    size.columns = std::max<std::size_t>(size.columns, 1);
    size.rows = std::max<std::size_t>(size.rows, 1);
    Glyphs glyphs = glyphsOf(std::wstring(prompt) + std::wstring(line));
    Place end = lay(glyphs, size.columns);
    auto const atCursor = std::find_if(glyphs.begin(), glyphs.end(), [&](Glyph const & glyph) {
        return glyph.begin >= prompt.size() + cursor;
    });
    Place place = atCursor == glyphs.end() ? end : atCursor->place;
    std::size_t const first = firstRow(place, end, size.rows);

    std::erase_if(glyphs, [&](Glyph const & glyph) {
        return glyph.place.row < first || glyph.place.row >= first + size.rows;
    });
    for (Glyph & glyph : glyphs) glyph.place.row -= first;
    place.row -= first;
    bool const isCut = end.row >= first + size.rows;
    end = isCut ? Place{size.rows - 1, size.columns} : Place{end.row - first, end.column};

    std::string text;
    std::size_t same = 0;
    if (!m_bDrawn || !(size == m_size) || first != m_firstRow) {
        if (m_bDrawn) text += clear(size.columns);
    } else {
        while (same < glyphs.size() && same < m_shown.size() &&
               glyphs[same].text == m_shown[same].text && glyphs[same].place == m_shown[same].place)
            ++same;
    }
    m_size = size;
    bool const changes = same < glyphs.size() || same < m_shown.size() || !m_bDrawn;
    if (changes) {
        text += goTo(same < glyphs.size() ? glyphs[same].place : end);
        text += write(glyphs, same);
        if (!isCut && end.column == 0 && m_cursor.row < end.row) text += " \r"; // to the next row
        m_cursor = end;
        bool const isLess =
            end.row < m_end.row || (end.row == m_end.row && end.column < m_end.column);
        if (!isCut && (isLess || same == 0)) text += "\x1B[J";
    }
    m_shown = std::move(glyphs);
    m_firstRow = first;
    m_end = end;
    m_bDrawn = true;
    return text + goTo(place);
}

std::string LineDisplay::end() { return m_bDrawn ? goTo(m_end) : std::string(); }

void LineDisplay::forget() { *this = LineDisplay(); }

} // namespace Vn::Console
