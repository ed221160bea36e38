// A catalogue as translators write it.

#ifndef VN_TESTS_TRANSLATIONS_POFILE_H
#define VN_TESTS_TRANSLATIONS_POFILE_H

#include <string>
#include <vector>

namespace Vn::Translations {

struct PoEntry {
    std::string context; // the key
    std::string id;      // the English text
    std::string text;    // the translation; empty if there is none
};

// The entries of the file Translations/`name`, in order, without its header.  The texts are UTF-8.
// Throws std::runtime_error for a file that can't be read or holds a line that it doesn't know.
std::vector<PoEntry> readPoFile(std::string const & name);

} // namespace Vn::Translations

#endif
