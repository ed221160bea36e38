// What the libraries tell people, such as why something failed, in the user's language.
//
// A text is named by its English wording, in which %1% to %9% are the places of values.  Its
// translations are the catalogue "VnLibraries" of the string table, which Translations/Libraries
// holds; `Tools/translations.sh` collects the English texts from the sources, where it knows them
// by the literals that these operations are given.
//
// A text of the operating system or of another library stays as it is.  It goes into a place of a
// text whose context names where it is from, so that a translation can say so.

#ifndef VN_PLATFORM_BASE_LOCALIZEDTEXT_H
#define VN_PLATFORM_BASE_LOCALIZEDTEXT_H

#include <concepts>
#include <string>
#include <string_view>

#include "Platform/Base/Export.h"
#include "Platform/Base/Text.h"

namespace Vn {

// Marks a text that is localized later, such as a constant.
template <class Character>
constexpr Character const * localizable(Character const * english) noexcept {
    return english;
}

// The text in the current language of the string table with its places empty, or in English if
// there is no translation.  `context`, in ASCII, tells apart the meanings of one English text; it
// is empty where there is one.
VN_BASE_API std::wstring localizedPattern(std::string_view context, std::wstring_view english);

// What goes into a place: a text as it is, in UTF-8 or wide, or a whole number in digits.
inline std::wstring localizedValue(std::string_view utf8) { return Text::fromUtf8(utf8); }
inline std::wstring localizedValue(std::wstring_view text) { return std::wstring(text); }
template <std::integral Number>
std::wstring localizedValue(Number number) {
    return std::to_wstring(number);
}

// The text in the user's language, with at most nine values in its places.
template <class... Values>
std::wstring localized(wchar_t const * english, Values const &... values) {
    return Text::filled(localizedPattern({}, english),
                        {std::wstring_view(localizedValue(values))...});
}

// The same in UTF-8, where one English text has several meanings.
template <class... Values>
std::string localizedIn(std::string_view context, char const * english, Values const &... values) {
    return Text::toUtf8(Text::filled(localizedPattern(context, Text::fromUtf8(english)),
                                     {std::wstring_view(localizedValue(values))...}));
}

// The same in UTF-8, as a Status takes its cause.
template <class... Values>
std::string localized(char const * english, Values const &... values) {
    return localizedIn({}, english, values...);
}

} // namespace Vn

#endif
