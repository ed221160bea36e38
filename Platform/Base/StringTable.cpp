#include "Platform/Base/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "Platform/Base/MessageCatalogueInternal.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"

namespace Vn {

namespace {

struct Catalogues {
    std::mutex mutex;
    std::string language;
    std::vector<std::filesystem::path> directories;
    // The translations of each module, or null.  They are read when first asked for, and all again
    // after a change of language or directories.
    std::map<std::string, std::shared_ptr<MessageCatalogue const>, std::less<>> modules;
    // The numbers of the languages with the first so many of the directories.
    std::map<std::pair<std::string, std::size_t>, unsigned> editions{{{std::string(), 0}, 0}};

    // After a change of language or directories: the number of what is used now.
    unsigned changed() {
        modules.clear();
        auto const next = static_cast<unsigned>(editions.size());
        return editions.emplace(std::pair(language, directories.size()), next).first->second;
    }
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

// The names under which a language may be found, the nearest first: of "de_AT@old" these are
// "de_AT@old", "de@old", "de_AT" and "de".
std::vector<std::string> namesOf(std::string const & language) {
    std::size_t const variantAt = std::min(language.find('@'), language.size());
    std::size_t const territoryAt = std::min(language.find('_'), variantAt);
    std::string const name = language.substr(0, territoryAt);
    std::string const territory = language.substr(territoryAt, variantAt - territoryAt);
    std::string const variant = language.substr(variantAt);
    std::vector<std::string> names;
    for (std::string const & after : {territory + variant, variant, territory, std::string()}) {
        std::string whole = name + after;
        if (!whole.empty() && std::find(names.begin(), names.end(), whole) == names.end())
            names.push_back(std::move(whole));
    }
    return names;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool isCOrPosix(std::string_view tag) { return tag == "c" || tag == "posix"; }

// A tag as catalogues are named: the language in small letters, an underscore, the territory in
// capitals, and no encoding; empty if it isn't one.
std::string normalized(std::string_view languageTag) {
    std::string tag(languageTag.substr(0, languageTag.find('.')));
    std::replace(tag.begin(), tag.end(), '-', '_');
    if (!isName(tag, "_@")) return {};
    auto const variant = std::find(tag.begin(), tag.end(), '@');
    auto const territory = std::find(tag.begin(), variant, '_');
    std::transform(tag.begin(), territory, tag.begin(), lower);
    // A longer word there is a script: "zh_Hant".
    if (variant - territory == 3) std::transform(territory, variant, territory, upper);
    return tag;
}

bool isEnglish(std::string const & tag) {
    std::vector<std::string> const names = namesOf(tag);
    return isCOrPosix(tag) || (!names.empty() && names.back() == "en");
}

std::filesystem::path catalogueIn(std::filesystem::path const & directory,
                                  std::filesystem::path const & language, std::string_view module) {
    return directory / language / "LC_MESSAGES" / (std::string(module) + ".mo");
}

// The translations of one module, or null if there are none.
std::shared_ptr<MessageCatalogue const>
readCatalogue(std::string const & language, std::string_view module,
              std::vector<std::filesystem::path> const & directories) {
    for (std::string const & name : namesOf(language)) {
        for (std::filesystem::path const & directory : directories) {
            auto catalogue = MessageCatalogue::read(catalogueIn(directory, name, module));
            if (catalogue) return catalogue;
        }
    }
    return nullptr;
}

} // namespace

constinit std::atomic<unsigned> StringTable::s_edition{0};

std::wstring StringTable::getLocalizedString(std::string_view module, std::string_view key,
                                             std::wstring_view defaultText) {
    std::shared_ptr<MessageCatalogue const> catalogue;
    {
        Catalogues & all = catalogues();
        std::lock_guard const guard(all.mutex);
        if (all.language.empty() || !isName(module, "_-")) return std::wstring(defaultText);
        auto found = all.modules.find(module);
        if (found == all.modules.end()) {
            found =
                all.modules.emplace(module, readCatalogue(all.language, module, all.directories))
                    .first;
        }
        catalogue = found->second;
    }
    std::wstring text(defaultText);
    if (!catalogue || text.empty()) return text;
    auto const translation = catalogue->find(key, Text::toUtf8(text));
    // An empty translation is one that nobody has written yet.
    if (translation && !translation->empty()) Text::fromUtf8(*translation, text);
    return text;
}

void StringTable::language(std::string_view languageTag) {
    std::string tag = normalized(languageTag);
    if (isCOrPosix(tag)) tag.clear();
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    all.language = std::move(tag);
    s_edition.store(all.changed(), std::memory_order_release);
}

std::string StringTable::language() {
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    return all.language;
}

std::vector<std::string> StringTable::languages(std::string_view module) {
    std::vector<std::filesystem::path> directories;
    {
        Catalogues & all = catalogues();
        std::lock_guard const guard(all.mutex);
        directories = all.directories;
    }
    std::set<std::string> found;
    for (std::filesystem::path const & directory : directories) {
        std::error_code error;
        std::filesystem::directory_iterator each(directory, error);
        for (; !error && each != std::filesystem::directory_iterator(); each.increment(error)) {
            std::u8string const name = each->path().filename().u8string();
            std::string const tag(name.begin(), name.end());
            std::error_code ignored;
            if (isName(tag, "_@") && isName(module, "_-") &&
                std::filesystem::exists(catalogueIn(directory, tag, module), ignored))
                found.insert(tag);
        }
    }
    return {found.begin(), found.end()};
}

bool StringTable::hasLanguage(std::string_view module, std::string_view languageTag) {
    std::string const tag = normalized(languageTag);
    if (languageTag.empty() || isEnglish(tag)) return true;
    std::vector<std::string> const known = languages(module);
    std::vector<std::string> const names = namesOf(tag);
    return std::find_first_of(names.begin(), names.end(), known.begin(), known.end()) !=
           names.end();
}

void StringTable::catalogueDirectory(std::string_view utf8Path) {
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    all.directories.emplace_back(std::u8string(utf8Path.begin(), utf8Path.end()));
    s_edition.store(all.changed(), std::memory_order_release);
}

} // namespace Vn
