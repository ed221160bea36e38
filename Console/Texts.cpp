#include "Console/Texts.h"

#include <charconv>
#include <ostream>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Messages.h"
#include "Platform/Base/Spelling.h"

namespace Vn::Console {

std::wstring shortestNumber(double value) {
    char buffer[64];
    char * const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return std::wstring(buffer, end);
}

std::wstring inQuotes(std::wstring_view text) {
    return message(L"\"%1%\"", printable(clipped(text)));
}

std::wstring orInstead(std::wstring const & name, std::vector<std::wstring> const & names) {
    // Long names aren't mistyped but something else, and costly to compare.
    constexpr std::size_t c_longest = 100;
    if (name.size() <= c_longest) {
        auto const nearest = Spelling::nearest(name, names, Spelling::allowedMistakes(name.size()));
        if (!nearest.empty()) return message(L"; did you mean %1%?", printable(*nearest.front()));
    }
    constexpr std::size_t c_longestList = 1000;
    if (names.empty()) return {};
    std::wstring all;
    for (std::wstring const & known : names) {
        if (all.size() > c_longestList) break;
        all += (all.empty() ? L"" : L", ") + printable(clipped(known));
    }
    return clipped(message(names.size() == 1 ? tr(L"; there is %1%") : tr(L"; there are %1%"), all),
                   c_longestList);
}

int told(std::wstring const & why, std::ostream & err) {
    err << "vnconsole: " << Text::toUtf8(why) << '\n';
    return ExitBadInput;
}

int told(Status const & why, std::ostream & err) { return told(printable(statusText(why)), err); }

bool isWord(std::wstring_view text, std::wstring_view word) {
    return Text::foldedEqual(text, word);
}

bool containsFolded(std::wstring_view text, std::wstring_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
        if (Text::foldedEqual(text.substr(i, part.size()), part)) return true;
    return false;
}

} // namespace Vn::Console
