#include "Platform/Base/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
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

// The translations of one module, or null if there are none.
std::shared_ptr<MessageCatalogue const>
readCatalogue(std::string const & language, std::string_view module,
              std::vector<std::filesystem::path> const & directories) {
    std::filesystem::path const file = std::string(module) + ".mo";
    for (std::string const & name : namesOf(language)) {
        for (std::filesystem::path const & directory : directories) {
            auto catalogue = MessageCatalogue::read(directory / name / "LC_MESSAGES" / file);
            if (catalogue) return catalogue;
        }
    }
    return nullptr;
}

} // namespace

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
    std::string tag(languageTag.substr(0, languageTag.find('.')));
    std::replace(tag.begin(), tag.end(), '-', '_');
    if (!isName(tag, "_@") || tag == "C" || tag == "POSIX") tag.clear();
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    all.language = std::move(tag);
    all.modules.clear();
}

std::string StringTable::language() {
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    return all.language;
}

void StringTable::catalogueDirectory(std::string_view utf8Path) {
    Catalogues & all = catalogues();
    std::lock_guard const guard(all.mutex);
    all.directories.emplace_back(std::u8string(utf8Path.begin(), utf8Path.end()));
    all.modules.clear();
}

} // namespace Vn
