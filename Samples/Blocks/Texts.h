// The texts of the sample in the user's language.

#ifndef VN_SAMPLES_BLOCKS_TEXTS_H
#define VN_SAMPLES_BLOCKS_TEXTS_H

#include <initializer_list>
#include <string>
#include <string_view>

#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"

namespace Vn::Blocks {

// An English text in the user's language: as the catalogue "VnBlocks" has it, by its wording.
inline std::wstring tr(wchar_t const * text) {
    return StringTable::getLocalizedString("VnBlocks", {}, text);
}

// A message with values in the places %1% to %9%.  It is a whole sentence, since translations have
// another order of words.
inline std::wstring message(wchar_t const * text, std::initializer_list<std::wstring_view> values) {
    return Text::filled(tr(text), values);
}

} // namespace Vn::Blocks

#endif
