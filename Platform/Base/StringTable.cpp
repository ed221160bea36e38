#include "Platform/Base/StringTable.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <locale>
#include <map>
#include <mutex>
#include <system_error>
#include <vector>

#include <boost/locale/gnu_gettext.hpp>
#include <boost/locale/message.hpp>

#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"

namespace Vn {

namespace {

struct Catalogues {
    std::mutex mutex;
    std::string language;
    std::vector<std::string> directories;
    // One locale per module, with its translations.  They are made when first asked for, and all
    // again after a change of language or directories.
    std::map<std::string, std::locale, std::less<>> locales;
};

constinit Shared<Catalogues> s_catalogues;

Catalogues & catalogues() {
    return s_catalogues.get([] { return new Catalogues; });
}

bool isAsciiAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Names that become part of a path are held to letters, digits and the few characters in `others`.
bool isName(std::string_view text, std::string_view others) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
        return isAsciiAlphanumeric(c) || others.find(c) != others.npos;
    });
}

// A number of 32 bits at `offset`, which must lie within the file.
std::uint32_t numberAt(std::string_view file, std::size_t offset, bool swapped) {
    std::uint32_t number = 0;
    std::memcpy(&number, file.data() + offset, sizeof number);
    if (!swapped) return number;
    return (number >> 24) | ((number >> 8) & 0xFF00U) | ((number << 8) & 0xFF0000U) |
           (number << 24);
}

// Whether what a compiled catalogue says of itself is true: every table and text lies within the
// file and ends with a null.  The library that reads catalogues takes that for granted.
//
// The file starts with seven numbers: the magic number, the version, how many texts there are,
// where the tables of messages and of translations start, and the size and start of a hash table.
// A row of a table is the length of a text and where it starts.
bool isSound(std::string_view file) {
    constexpr std::size_t c_header = 28;
    constexpr std::uint32_t c_magic = 0x950412DEU;
    if (file.size() < c_header) return false;
    bool const swapped = numberAt(file, 0, false) != c_magic;
    if (numberAt(file, 0, swapped) != c_magic) return false;
    auto const number = [&](std::size_t offset) -> std::uint64_t {
        return numberAt(file, offset, swapped);
    };

    std::uint64_t const count = number(8);
    if (count == 0 || number(24) + 4 * number(20) > file.size()) return false;
    std::uint64_t total = 0;
    for (std::uint64_t const table : {number(12), number(16)}) {
        if (table + 8 * count > file.size()) return false;
        for (std::uint64_t i = 0; i < count; ++i) {
            std::uint64_t const length = number(table + 8 * i);
            std::uint64_t const start = number(table + 8 * i + 4);
            if (start + length >= file.size() || file[start + length] != '\0') return false;
            // Texts that lie over each other would take more memory than the file is long.
            total += length + 1;
            if (total > file.size()) return false;
        }
    }

    // The first translation is the catalogue's header.  The rule for plurals in it is an expression
    // that is read recursively; those of real languages are short.
    constexpr std::size_t c_longestRule = 1000;
    std::string_view const header = file.substr(number(number(16) + 4), number(number(16)));
    std::size_t const rule = header.find("plural=");
    return rule == header.npos || header.substr(rule).find_first_of(";\r\n") <= c_longestRule ||
           header.size() - rule <= c_longestRule;
}

// A catalogue file, or nothing if there is none or it is damaged.
std::vector<char> readCatalogue(std::string const & utf8Path) {
    constexpr std::streamoff c_largestFile = 64 << 20;
    std::filesystem::path const path(std::u8string(utf8Path.begin(), utf8Path.end()));
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return {};
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    std::streamoff const size = stream.tellg();
    if (size <= 0 || size > c_largestFile) return {};
    std::vector<char> file(static_cast<std::size_t>(size));
    stream.seekg(0);
    if (!stream.read(file.data(), size) || !isSound({file.data(), file.size()})) return {};
    return file;
}

// A locale that has the translations of one module, and is the classic one otherwise.
std::locale makeLocale(std::string const & language, std::string const & module,
                       std::vector<std::string> const & directories) {
    namespace gettext = boost::locale::gnu_gettext;
    gettext::messages_info info;
    std::size_t const variant = std::min(language.find('@'), language.size());
    std::size_t const country = std::min(language.find('_'), variant);
    info.language = language.substr(0, country);
    if (country < variant) info.country = language.substr(country + 1, variant - country - 1);
    if (variant < language.size()) info.variant = language.substr(variant + 1);
    info.encoding = "UTF-8";
    info.domains.emplace_back(module);
    info.paths = directories;
    info.callback = [](std::string const & file, std::string const &) {
        return readCatalogue(file);
    };
    try {
        return std::locale(std::locale::classic(), gettext::create_messages_facet<wchar_t>(info));
    } catch (std::exception const &) {
        // An encoding that nobody knows, say.
        return std::locale::classic();
    }
}

} // namespace

std::wstring StringTable::getLocalizedString(std::string_view module, std::string_view key,
                                             std::wstring_view defaultText) {
    std::wstring const text(defaultText);
    std::locale locale = std::locale::classic();
    {
        Catalogues & all = catalogues();
        std::lock_guard const guard(all.mutex);
        if (all.language.empty() || text.empty() || !isName(module, "_-")) return text;
        auto found = all.locales.find(module);
        if (found == all.locales.end()) {
            std::string const name(module);
            found =
                all.locales.emplace(name, makeLocale(all.language, name, all.directories)).first;
        }
        locale = found->second;
    }
    return boost::locale::translate(Text::widen(key), text).str(locale);
}

void StringTable::language(std::string_view languageTag) {
    std::string tag(languageTag.substr(0, languageTag.find('.')));
    std::replace(tag.begin(), tag.end(), '-', '_');
    if (!isName(tag, "_@") || tag == "C" || tag == "POSIX") tag.clear();
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    all.language = std::move(tag);
    all.locales.clear();
}

std::string StringTable::language() {
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    return all.language;
}

void StringTable::catalogueDirectory(std::string_view utf8Path) {
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    all.directories.emplace_back(utf8Path);
    all.locales.clear();
}

} // namespace Vn
