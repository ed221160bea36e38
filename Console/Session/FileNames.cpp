#include "Console/Session/FileNames.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

namespace fs = std::filesystem;

// Of a directory that has more, the rest isn't looked at.
constexpr std::size_t c_mostNames = 10000;

struct Name {
    std::wstring text;
    bool isDirectory = false;
};

bool hasBlank(std::wstring_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); });
}

fs::path pathFrom(std::wstring const & text) {
    std::string const utf8 = Text::toUtf8(text);
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

// Without the quote in front, and the marks before others.
std::wstring unquoted(std::wstring_view typed) {
    std::wstring text;
    for (std::size_t i = 1; i < typed.size(); ++i) {
        if (typed[i] == L'\\' && i + 1 < typed.size() && typed[i + 1] == L'"') ++i;
        text += typed[i];
    }
    return text;
}

std::wstring escaped(std::wstring const & text) {
    std::wstring result;
    for (wchar_t const c : text) {
        if (c == L'"') result += L'\\';
        result += c;
    }
    return result;
}

// The name of a file; none if it can't be typed.
std::optional<std::wstring> nameOf(fs::path const & path) {
    std::u8string const utf8 = path.filename().u8string();
    std::wstring name;
    if (!Text::fromUtf8(std::string(utf8.begin(), utf8.end()), name)) return std::nullopt;
    if (name != printable(name)) return std::nullopt;
    return name;
}

// Those in a directory that begin with `begun`, in order.
std::vector<Name> namesIn(std::wstring const & directory, std::wstring const & begun) {
    std::vector<Name> names;
    std::error_code error;
    fs::directory_iterator entry(directory.empty() ? fs::path(".") : pathFrom(directory), error);
    for (std::size_t i = 0; !error && entry != fs::directory_iterator() && i < c_mostNames; ++i) {
        std::optional<std::wstring> const name = nameOf(entry->path());
        bool const isHidden = name && name->starts_with(L'.') && !begun.starts_with(L'.');
        std::error_code ignored;
        if (name && !isHidden && name->starts_with(begun))
            names.push_back({*name, fs::is_directory(entry->path(), ignored)});
        entry.increment(error);
    }
    std::sort(names.begin(), names.end(),
              [](Name const & a, Name const & b) { return a.text < b.text; });
    return names;
}

// The user's directory; empty if the system names none.
std::wstring homeDirectory() {
    char const * const home = std::getenv("HOME");
    std::wstring text;
    if (!home || *home != '/' || !Text::fromUtf8(home, text)) return {};
    while (text.ends_with(L'/')) text.pop_back();
    return text;
}

// With the user's directory in place of a "~", which commands on documents don't know.
std::wstring withoutTilde(std::wstring const & path) {
    if (path != L"~" && !path.starts_with(L"~/")) return path;
    std::wstring const home = homeDirectory();
    return home.empty() ? path : home + (path == L"~" ? L"/" : path.substr(1));
}

} // namespace

Completion completeFileName(std::wstring_view typed) {
    bool const isQuoted = typed.starts_with(L'"');
    // After a blank another parameter begins.
    if (!isQuoted && hasBlank(typed)) return {};
    std::wstring const path = withoutTilde(isQuoted ? unquoted(typed) : std::wstring(typed));
    // What ends with its quote is complete.
    if (isQuoted && path.ends_with(L'"') && !typed.ends_with(L"\\\"")) return {};
    std::size_t const slash = path.rfind(L'/');
    std::wstring const directory = slash == path.npos ? L"" : path.substr(0, slash + 1);
    std::vector<Name> const names = namesIn(directory, path.substr(directory.size()));
    bool const needsQuotes = isQuoted || directory.starts_with(L'/') || hasBlank(directory) ||
                             std::any_of(names.begin(), names.end(), [](Name const & name) {
                                 return hasBlank(name.text) || name.text.starts_with(L'"');
                             });
    Completion completion;
    completion.begun = typed.size();
    for (Name const & name : names) {
        std::wstring const full = directory + name.text + (name.isDirectory ? L"/" : L"");
        std::wstring const after = needsQuotes && !name.isDirectory ? L"\"" : L"";
        completion.candidates.push_back({needsQuotes ? L'"' + escaped(full) : full, after});
    }
    return completion;
}

} // namespace Vn::Console
