#include "Console/Terminal/Excerpt.h"

#include <algorithm>

#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

constexpr int c_columnsInFront = 40;
constexpr int c_columnsAfter = 36;
constexpr int c_columnsOfTab = 8;
// Combining characters take no columns, so columns alone don't limit a window.
constexpr std::size_t c_windowCharacters = 200;

// The character at `index`, as it is shown.
std::wstring shown(std::wstring_view text, std::size_t index) {
    std::size_t const length = characterLength(text, index);
    if (length > 1) return std::wstring(text.substr(index, length));
    wchar_t const c = text[index];
    return std::wstring(1, c == L'\t' ? c : printable(c));
}

int columns(std::wstring const & character) {
    return character == L"\t" ? c_columnsOfTab : Text::displayWidth(character);
}

std::size_t windowBegin(std::wstring_view text, std::size_t index) {
    std::size_t begin = index;
    int width = 0;
    while (begin > 0 && index - begin < c_windowCharacters) {
        std::size_t before = begin - 1;
        if (before > 0 && characterLength(text, before - 1) > 1) --before;
        width += columns(shown(text, before));
        if (width > c_columnsInFront) break;
        begin = before;
    }
    return begin;
}

std::size_t windowEnd(std::wstring_view text, std::size_t index) {
    std::size_t end = index;
    int width = 0;
    while (end < text.size() && end - index < c_windowCharacters) {
        width += columns(shown(text, end));
        if (width > c_columnsAfter) break;
        end += characterLength(text, end);
    }
    return end;
}

} // namespace

Excerpt excerptAt(std::wstring_view text, std::size_t position16, std::size_t start16,
                  std::size_t end16) {
    std::size_t const index = Text::indexAt16(text, position16);
    bool const hasPiece = start16 != position16;
    std::size_t const pieceBegin = hasPiece ? Text::indexAt16(text, start16) : index;
    std::size_t const pieceEnd = hasPiece ? Text::indexAt16(text, end16) : index;
    std::size_t begin = windowBegin(text, index);
    std::size_t end = windowEnd(text, index);
    // Three dots instead of a few characters would save nothing.
    if (begin <= 3) begin = 0;
    if (text.size() - end <= 3) end = text.size();

    Excerpt excerpt;
    if (begin > 0) {
        excerpt.text = L"...";
        excerpt.marks = L"   ";
    }
    for (std::size_t i = begin; i < end; i += characterLength(text, i)) {
        std::wstring const character = shown(text, i);
        excerpt.text += character;
        bool const isInPiece = i >= pieceBegin && i < pieceEnd;
        wchar_t const mark = isInPiece ? L'~' : L' ';
        auto width = static_cast<std::size_t>(columns(character));
        if (i == index) {
            excerpt.marks += L'^';
            width -= std::min<std::size_t>(width, 1);
        }
        excerpt.marks += character == L"\t" && i != index ? character : std::wstring(width, mark);
    }
    if (end < text.size()) excerpt.text += L"...";
    if (index >= end) excerpt.marks += L'^';
    excerpt.marks.resize(excerpt.marks.find_last_not_of(L" \t") + 1);
    return excerpt;
}

} // namespace Vn::Console
