#ifndef VN_PLATFORM_BASE_STRINGTABLE_H
#define VN_PLATFORM_BASE_STRINGTABLE_H

#include <string>
#include <string_view>

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
    // and `key` are ASCII.  A catalogue that is damaged, or isn't in UTF-8, holds no translations.
    static std::wstring getLocalizedString(std::string_view module, std::string_view key,
                                           std::wstring_view defaultText);

    // Chooses the language by a tag such as "de", "de_AT" or "de-AT"; an encoding after it, as in
    // "de_DE.UTF-8", is dropped.  A territory that has no catalogue falls back to its language.
    // "" is English as written in the program, and so are "C", "POSIX" and a tag that isn't one.
    //
    // To be called by the host before the first text is asked for: many texts are looked up once
    // and kept.
    static void language(std::string_view languageTag);

    // The language chosen, with an underscore before the territory; "" for English.
    static std::string language();

    // Adds a directory in which catalogues are looked for, after those added before.  The path is
    // UTF-8.  A directory that doesn't exist holds no catalogues.
    static void catalogueDirectory(std::string_view utf8Path);

    StringTable() = delete;
};

} // namespace Vn

#endif
