#include "Console/Host/Language.h"

#include <algorithm>
#include <cstdlib>

#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

constexpr char c_module[] = "VnCommonData";

bool isNoLanguage(std::string_view locale) {
    std::string_view const name = locale.substr(0, locale.find('.'));
    return name.empty() || name == "C" || name == "POSIX";
}

} // namespace

std::string preferredLanguage(Environment const & environment) {
    std::string locale;
    for (char const * const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        locale = environment(name);
        if (!locale.empty()) break;
    }
    if (isNoLanguage(locale)) return {};
    std::string const tags = environment("LANGUAGE") + ':' + locale;
    for (std::string_view rest = tags; !rest.empty();) {
        std::string_view const tag = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(rest.size(), tag.size() + 1));
        if (!tag.empty() && StringTable::hasLanguage(c_module, tag)) return std::string(tag);
    }
    return {};
}

std::string preferredLanguage() {
    return preferredLanguage([](char const * name) {
        char const * const value = std::getenv(name);
        return std::string(value ? value : "");
    });
}

std::wstring whyNotLanguage(std::string_view tag) {
    if (StringTable::hasLanguage(c_module, tag)) return {};
    std::wstring const name = Text::fromUtf8(tag);
    return message(L"there is no language %1%", inQuotes(name)) + orInstead(name, languages());
}

std::vector<std::wstring> languages() {
    std::vector<std::wstring> all{L"en"};
    for (std::string const & tag : StringTable::languages(c_module))
        all.push_back(Text::fromUtf8(tag));
    return all;
}

std::wstring language() {
    std::string const tag = StringTable::language();
    return tag.empty() ? L"en" : Text::fromUtf8(tag);
}

} // namespace Vn::Console
