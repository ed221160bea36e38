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

std::size_t indexOf(std::wstring_view text, std::size_t position16) {
    if constexpr (sizeof(wchar_t) == 2) {
        std::size_t const index = std::min(position16, text.size());
        // Between the halves of a character is after it.
        return index > 0 && characterLength(text, index - 1) > 1 ? index + 1 : index;
    }
    std::size_t index = 0;
    for (std::size_t at = 0; index < text.size() && at < position16; ++index)
        at += Text::length16(text.substr(index, 1));
    return index;
}

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

Excerpt excerptAt(std::wstring_view text, std::size_t position16) {
    std::size_t const index = indexOf(text, position16);
    std::size_t begin = windowBegin(text, index);
    std::size_t end = windowEnd(text, index);
    // Three dots instead of a few characters would save nothing.
    if (begin <= 3) begin = 0;
    if (text.size() - end <= 3) end = text.size();

    Excerpt excerpt;
    if (begin > 0) {
        excerpt.text = L"...";
        excerpt.caret = L"   ";
    }
    for (std::size_t i = begin; i < end; i += characterLength(text, i)) {
        std::wstring const character = shown(text, i);
        excerpt.text += character;
        if (i >= index) continue;
        excerpt.caret += character == L"\t"
                             ? character
                             : std::wstring(static_cast<std::size_t>(columns(character)), L' ');
    }
    if (end < text.size()) excerpt.text += L"...";
    excerpt.caret += L'^';
    return excerpt;
}

} // namespace Vn::Console
