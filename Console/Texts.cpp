#include "Console/Texts.h"

#include <algorithm>
#include <charconv>

#include "Platform/Base/Text.h"

namespace Vn::Console {

std::wstring shortestNumber(double value) {
    char buffer[64];
    char * const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return std::wstring(buffer, end);
}

std::wstring clipped(std::wstring_view text, std::size_t length) {
    if (text.size() <= length) return std::wstring(text);
    // Not between the halves of a character.
    std::size_t const end =
        length > 0 && characterLength(text, length - 1) > 1 ? length - 1 : length;
    return std::wstring(text.substr(0, end)) + L"...";
}

std::wstring inQuotes(std::wstring_view text) { return L'"' + printable(clipped(text)) + L'"'; }

std::size_t characterLength(std::wstring_view text, std::size_t index) {
    auto const isWithin = [&](std::size_t i, wchar_t low, wchar_t high) {
        return i < text.size() && text[i] >= low && text[i] <= high;
    };
    bool const pair = sizeof(wchar_t) == 2 && isWithin(index, L'\xD800', L'\xDBFF') &&
                      isWithin(index + 1, L'\xDC00', L'\xDFFF');
    return pair ? 2 : 1;
}

wchar_t printable(wchar_t c) {
    if (static_cast<char32_t>(c) < 0x20) return static_cast<wchar_t>(0x2400 + c);
    if (c == 0x7F) return L'\x2421';
    bool const control = c >= 0x80 && c < 0xA0;
    bool const direction = c == 0x61C || c == 0x200E || c == 0x200F ||
                           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    bool const surrogate = sizeof(wchar_t) > 2 && c >= 0xD800 && c <= 0xDFFF;
    return control || direction || surrogate ? L'\xFFFD' : c;
}

std::wstring printable(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](wchar_t c) { return printable(c); });
    return result;
}

std::wstring_view trimmed(std::wstring_view text) {
    auto const isSpace = [](wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

bool containsFolded(std::wstring_view text, std::wstring_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
        if (Text::foldedEqual(text.substr(i, part.size()), part)) return true;
    return false;
}

} // namespace Vn::Console
