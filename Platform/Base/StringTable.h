#ifndef VN_PLATFORM_BASE_STRINGTABLE_H
#define VN_PLATFORM_BASE_STRINGTABLE_H

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"

namespace Vn {

// The texts that a user sees, in the user's language.
//
// A text is named by its module, its key and its English wording.  Translations are gettext
// catalogues: the module is the domain, the key the message context (msgctxt) and the English
// wording the message id, so that
//
//     <directory>/<language>/LC_MESSAGES/<module>.mo
//
// holds the translations of one module.  The process's global C and C++ locales are neither read
// nor changed.  Any thread may call these operations.
class VN_BASE_API StringTable {
public:
    // The text in the current language, or `defaultText` if the language has none for it.  `module`
    // and `key` are ASCII.  With an empty key the English wording alone names the text: an entry of
    // the catalogue without a context.  An empty `defaultText` stays empty.  A catalogue that is
    // damaged, or isn't in UTF-8, holds no translations.
    static std::wstring getLocalizedString(std::string_view module, std::string_view key,
                                           std::wstring_view defaultText);

    // Chooses the language by a tag such as "de", "de_AT" or "de-AT"; an encoding after it, as in
    // "de_DE.UTF-8", is dropped.  The case of letters doesn't count: "DE-at" is "de_AT".  A
    // territory that has no catalogue falls back to its language.
    // "" is English as written in the program, and so are "C", "POSIX" and a tag that isn't one.
    //
    // To be called by the host, while no other thread uses texts: before the first is asked for, or
    // between two pieces of work.  What is kept of a language is kept by PerLanguage, and so
    // follows.
    static void language(std::string_view languageTag);

    // The language chosen, with an underscore before the territory; "" for English.
    static std::string language();

    // A number for what the texts come from, which is the language and the directories: the same
    // number if both are as they were before.
    static unsigned edition() noexcept { return s_edition.load(std::memory_order_acquire); }

    // The languages for which the directories hold a catalogue of a module, in alphabetical order,
    // as `language` takes them.  English, which needs none, isn't among them.
    static std::vector<std::string> languages(std::string_view module);
    // Whether a tag chooses English or one of those, be it by its language alone: "de_AT" does if
    // there is "de".  False for a tag that isn't one.
    static bool hasLanguage(std::string_view module, std::string_view languageTag);

    // Adds a directory in which catalogues are looked for, after those added before.  The path is
    // UTF-8.  A directory that doesn't exist holds no catalogues.
    static void catalogueDirectory(std::string_view utf8Path);

    StringTable() = delete;

private:
    static std::atomic<unsigned> s_edition;
};

} // namespace Vn

#endif
