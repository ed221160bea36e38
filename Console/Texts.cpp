#include "Console/Texts.h"

#include <charconv>

namespace Vn::Console {

std::wstring shortestNumber(double value) {
    char buffer[64];
    char * const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return std::wstring(buffer, end);
}

std::wstring inQuotes(std::wstring_view text) { return L'"' + printable(clipped(text)) + L'"'; }

bool containsFolded(std::wstring_view text, std::wstring_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
        if (Text::foldedEqual(text.substr(i, part.size()), part)) return true;
    return false;
}

} // namespace Vn::Console
