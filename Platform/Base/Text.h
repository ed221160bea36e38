#ifndef VN_PLATFORM_BASE_TEXT_H
#define VN_PLATFORM_BASE_TEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Base/Export.h"

// Characters and their encodings.
//
// The system's text is wide: 16 bits a character on Windows, 32 elsewhere.  What a character is, is
// the system's own decision and asks no locale, so that the same text is read alike everywhere.
namespace Vn::Text {

namespace Detail {

enum : std::uint8_t { ClassPunctuation = 1, ClassSpace = 2, ClassDigit = 4 };

constexpr std::array<std::uint8_t, 128> makeAsciiClasses() {
    std::array<std::uint8_t, 128> classes{};
    for (std::size_t c = 0; c < classes.size(); ++c) {
        bool const letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (c >= '0' && c <= '9')
            classes[c] = ClassDigit;
        else if (c == ' ' || (c >= 9 && c <= 13))
            classes[c] = ClassSpace;
        else if (c > ' ' && c < 127 && !letter)
            classes[c] = ClassPunctuation;
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 128> c_asciiClasses = makeAsciiClasses();

VN_BASE_API bool isPunctuationBeyondAscii(char32_t character) noexcept;
VN_BASE_API bool isSpaceBeyondAscii(char32_t character) noexcept;

} // namespace Detail

// ASCII punctuation, U+00A1 to U+00BF, U+00D7, U+00F7, and the general categories P and S up to
// U+FFFF.
inline bool isPunctuation(char32_t character) noexcept {
    if (character < 128) return (Detail::c_asciiClasses[character] & Detail::ClassPunctuation) != 0;
    return Detail::isPunctuationBeyondAscii(character);
}

// ASCII white space (U+0009 to U+000D and the blank), U+0085, U+00A0, and the general category Zs
// up to U+FFFF.
inline bool isSpace(char32_t character) noexcept {
    if (character < 128) return (Detail::c_asciiClasses[character] & Detail::ClassSpace) != 0;
    return Detail::isSpaceBeyondAscii(character);
}

// 0 to 9, and no other digits.
constexpr bool isDigit(char32_t character) noexcept {
    return character >= U'0' && character <= U'9';
}

// The length in 16-bit characters.  Where wchar_t is wider, a character above U+FFFF counts two.
VN_BASE_API std::size_t length16(std::wstring_view text) noexcept;

// The index of the character at a position that is counted in 16-bit characters; the index after it
// if the position is between the halves of a character, and the size of the text if it is at or
// after the end.
VN_BASE_API std::size_t indexAt16(std::wstring_view text, std::size_t position16) noexcept;

// The number of wchar_t that the character at `index` takes: 2 for a surrogate pair, else 1.
VN_BASE_API std::size_t characterLength(std::wstring_view text, std::size_t index) noexcept;

// The text without blanks at its ends.
VN_BASE_API std::wstring_view trimmed(std::wstring_view text) noexcept;

// The text, or its beginning and "..." if it has more than `length` characters.
VN_BASE_API std::wstring clipped(std::wstring_view text, std::size_t length = 60);

// What is shown for a character so that it stays on its line and takes its place there: control
// characters and marks of direction get a picture.  Anything else is itself.
VN_BASE_API wchar_t printable(wchar_t c) noexcept;
// The same for each character of a text.
VN_BASE_API std::wstring printable(std::wstring_view text);

// A pattern with `values` in the places %1% to %9%, each as often as it is there and in any order.
// The values are taken as they are, and a place without a value stays.
VN_BASE_API std::wstring filled(std::wstring_view pattern,
                                std::initializer_list<std::wstring_view> values);

// The text in UTF-8.  What isn't a character, such as half of a surrogate pair, becomes U+FFFD.
VN_BASE_API std::string toUtf8(std::wstring_view text);

// Reads UTF-8 strictly.  False for anything that isn't well-formed: broken, overlong or surrogate
// sequences, or values above U+10FFFF; `text` is then left as it was.
VN_BASE_API bool fromUtf8(std::string_view utf8, std::wstring & text);

// Reads UTF-8 leniently: each longest broken piece of a sequence becomes one U+FFFD.
VN_BASE_API std::wstring fromUtf8(std::string_view utf8);

// Where the first broken piece of a text begins, in bytes; nothing if it is well-formed UTF-8.
VN_BASE_API std::optional<std::size_t> brokenUtf8(std::string_view utf8) noexcept;

// A position that is counted in 16-bit characters of `text`, counted in bytes of its UTF-8 instead.
// One between the halves of a character counts as after it, one after the end as the end.
VN_BASE_API std::size_t utf8At16(std::wstring_view text, std::size_t position16) noexcept;

// The way back: the position of the character that the byte `position8` of well-formed UTF-8
// belongs to, counted in 16-bit characters; the end if it is at or after that.
VN_BASE_API std::size_t position16AtUtf8(std::string_view utf8, std::size_t position8) noexcept;

// Makes ASCII wide.  Bytes above 127 become U+FFFD.
VN_BASE_API std::wstring widen(std::string_view ascii);

// How many columns a character takes in a terminal: 0 for control characters, combining marks and
// other characters without a width, 2 for East Asian wide and fullwidth ones, 1 for the rest.
VN_BASE_API int displayWidth(char32_t character) noexcept;
// The sum over the characters of a text.
VN_BASE_API int displayWidth(std::wstring_view text) noexcept;

// Whether two texts are equal if the case of ASCII letters doesn't count.
VN_BASE_API bool foldedEqual(std::wstring_view a, std::wstring_view b) noexcept;
VN_BASE_API bool foldedEqual(std::string_view a, std::string_view b) noexcept;

// The hash of a text (FNV-1a over its characters), for tables that are asked with views of texts.
// It is not made to withstand texts chosen to collide, so keys must not come from users.
struct Hash {
    // Tells the tables that a view is as good as a string.
    using is_transparent = void;
    // The hash of `text`, which may be of any length.
    std::size_t operator()(std::wstring_view text) const noexcept {
        std::size_t hash = static_cast<std::size_t>(0xcbf29ce484222325u);
        for (wchar_t const c : text)
            hash = (hash ^ static_cast<std::size_t>(c)) * static_cast<std::size_t>(0x100000001b3u);
        return hash ^ (hash >> 29);
    }
};

} // namespace Vn::Text

namespace Vn {

// A wide text as a narrow one, in UTF-8, for identifiers and diagnostics.
inline std::string ToHString(std::wstring_view text) { return Text::toUtf8(text); }

} // namespace Vn

#endif
