#include "Platform/Base/Text.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace Vn::Text {

namespace {

template <class Unit>
struct Range {
    Unit first;
    Unit last;
};

using Range16 = Range<std::uint16_t>;
using Range32 = Range<char32_t>;

#include "Platform/Base/TextTables.inc"

// The ranges are in order and don't touch.
template <class Unit, std::size_t Size>
bool contains(Range<Unit> const (&ranges)[Size], char32_t character) noexcept {
    auto const after = std::upper_bound(
        std::begin(ranges), std::end(ranges), character,
        [](char32_t value, Range<Unit> const & range) { return value < range.first; });
    return after != std::begin(ranges) && character <= std::prev(after)->last;
}

constexpr char32_t c_replacement = 0xFFFD;
constexpr char32_t c_lastCharacter = 0x10FFFF;

constexpr bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

char32_t unitAt(std::wstring_view text, std::size_t index) {
    return static_cast<std::make_unsigned_t<wchar_t>>(text[index]);
}

// The character at `index`, which moves after it.  Surrogate pairs are one character whatever the
// width of wchar_t; what isn't a character is U+FFFD.
char32_t nextCharacter(std::wstring_view text, std::size_t & index) {
    char32_t const unit = unitAt(text, index++);
    if (isHighSurrogate(unit) && index < text.size()) {
        char32_t const low = unitAt(text, index);
        if (isLowSurrogate(low)) {
            ++index;
            return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    bool const isCharacter =
        unit <= c_lastCharacter && !isHighSurrogate(unit) && !isLowSurrogate(unit);
    return isCharacter ? unit : c_replacement;
}

void append(std::wstring & text, char32_t character) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (character > 0xFFFF) {
            text += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
            return;
        }
    }
    text += static_cast<wchar_t>(character);
}

// Reads the sequence at `index`, which moves after it, or after the longest piece of it that
// could have been the start of one.  False if the sequence is broken.
bool decode(std::string_view utf8, std::size_t & index, char32_t & character) {
    auto const byteAt = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    unsigned char const lead = byteAt(index++);
    if (lead < 0x80) {
        character = lead;
        return true;
    }
    // The lead byte narrows the range of the second: that excludes overlong forms, surrogates and
    // values after the last character.
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    int further = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        further = 1;
        character = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        further = 2;
        character = lead & 0x0FU;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        further = 3;
        character = lead & 0x07U;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return false;
    }
    for (; further > 0; --further) {
        if (index >= utf8.size() || byteAt(index) < low || byteAt(index) > high) return false;
        character = (character << 6) | (byteAt(index++) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return true;
}

template <class Character>
bool foldedEqualAs(std::basic_string_view<Character> a, std::basic_string_view<Character> b) {
    auto const fold = [](Character c) {
        return c >= 'A' && c <= 'Z' ? static_cast<Character>(c + ('a' - 'A')) : c;
    };
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [&](Character x, Character y) { return fold(x) == fold(y); });
}

} // namespace

namespace Detail {

bool isPunctuationBeyondAscii(char32_t character) noexcept {
    return contains(c_punctuation, character);
}

bool isSpaceBeyondAscii(char32_t character) noexcept { return contains(c_space, character); }

} // namespace Detail

std::size_t length16(std::wstring_view text) noexcept {
    if constexpr (sizeof(wchar_t) == 2) return text.size();
    std::size_t length = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) length += unitAt(text, i) > 0xFFFF;
    return length;
}

std::size_t indexAt16(std::wstring_view text, std::size_t position16) noexcept {
    if constexpr (sizeof(wchar_t) == 2) {
        std::size_t const index = std::min(position16, text.size());
        return index > 0 && characterLength(text, index - 1) > 1 ? index + 1 : index;
    }
    std::size_t index = 0;
    for (std::size_t at = 0; index < text.size() && at < position16; ++index)
        at += length16(text.substr(index, 1));
    return index;
}

std::size_t characterLength(std::wstring_view text, std::size_t index) noexcept {
    auto const isWithin = [&](std::size_t i, wchar_t low, wchar_t high) {
        return i < text.size() && text[i] >= low && text[i] <= high;
    };
    bool const pair = sizeof(wchar_t) == 2 && isWithin(index, L'\xD800', L'\xDBFF') &&
                      isWithin(index + 1, L'\xDC00', L'\xDFFF');
    return pair ? 2 : 1;
}

std::wstring_view trimmed(std::wstring_view text) noexcept {
    auto const isBlank = [](wchar_t c) { return isSpace(static_cast<char32_t>(c)); };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::wstring clipped(std::wstring_view text, std::size_t length) {
    if (text.size() <= length) return std::wstring(text);
    // Not between the halves of a character.
    std::size_t const end =
        length > 0 && characterLength(text, length - 1) > 1 ? length - 1 : length;
    return std::wstring(text.substr(0, end)) + L"...";
}

wchar_t printable(wchar_t c) noexcept {
    if (static_cast<char32_t>(c) < 0x20) return static_cast<wchar_t>(0x2400 + c);
    if (c == 0x7F) return L'\x2421';
    bool const control = c >= 0x80 && c < 0xA0;
    bool const direction = c == 0x61C || c == 0x200E || c == 0x200F ||
                           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    bool const surrogate = sizeof(wchar_t) > 2 && c >= 0xD800 && c <= 0xDFFF;
    return control || direction || surrogate ? L'\xFFFD' : c;
}

std::wstring printable(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](wchar_t c) { return printable(c); });
    return result;
}

std::wstring filled(std::wstring_view pattern, std::initializer_list<std::wstring_view> values) {
    std::wstring text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        std::wstring_view const rest = pattern.substr(i);
        bool const isPlace = rest.size() > 2 && rest[0] == L'%' && rest[2] == L'%' &&
                             rest[1] > L'0' && rest[1] <= L'9';
        std::size_t const value = isPlace ? static_cast<std::size_t>(rest[1] - L'1') : 0;
        if (isPlace && value < values.size()) {
            text += values.begin()[value];
            i += 2;
        } else {
            text += pattern[i];
        }
    }
    return text;
}

std::string toUtf8(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    auto const add = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
    for (std::size_t i = 0; i < text.size();) {
        char32_t const character = nextCharacter(text, i);
        if (character < 0x80) {
            add(character);
        } else if (character < 0x800) {
            add(0xC0 | (character >> 6));
            add(0x80 | (character & 0x3F));
        } else if (character < 0x10000) {
            add(0xE0 | (character >> 12));
            add(0x80 | ((character >> 6) & 0x3F));
            add(0x80 | (character & 0x3F));
        } else {
            add(0xF0 | (character >> 18));
            add(0x80 | ((character >> 12) & 0x3F));
            add(0x80 | ((character >> 6) & 0x3F));
            add(0x80 | (character & 0x3F));
        }
    }
    return utf8;
}

bool fromUtf8(std::string_view utf8, std::wstring & text) {
    std::wstring read;
    read.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        char32_t character = 0;
        if (!decode(utf8, i, character)) return false;
        append(read, character);
    }
    text = std::move(read);
    return true;
}

std::wstring fromUtf8(std::string_view utf8) {
    std::wstring text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        char32_t character = 0;
        append(text, decode(utf8, i, character) ? character : c_replacement);
    }
    return text;
}

std::optional<std::size_t> brokenUtf8(std::string_view utf8) noexcept {
    for (std::size_t i = 0; i < utf8.size();) {
        std::size_t const start = i;
        char32_t character = 0;
        if (!decode(utf8, i, character)) return start;
    }
    return std::nullopt;
}

std::size_t utf8At16(std::wstring_view text, std::size_t position16) noexcept {
    std::size_t const end = indexAt16(text, position16);
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < end;) {
        char32_t const character = nextCharacter(text, i);
        bytes += character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    }
    return bytes;
}

std::size_t position16AtUtf8(std::string_view utf8, std::size_t position8) noexcept {
    std::size_t position16 = 0;
    for (std::size_t i = 0; i < utf8.size() && i < position8;) {
        char32_t character = 0;
        decode(utf8, i, character);
        if (i <= position8) position16 += character > 0xFFFF ? 2 : 1;
    }
    return position16;
}

std::wstring widen(std::string_view ascii) {
    std::wstring text(ascii.size(), L'\0');
    std::transform(ascii.begin(), ascii.end(), text.begin(), [](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return static_cast<wchar_t>(byte < 0x80 ? byte : c_replacement);
    });
    return text;
}

int displayWidth(char32_t character) noexcept {
    if (character < 0x80) return character >= 0x20 && character < 0x7F ? 1 : 0;
    if (contains(c_zeroWidth, character)) return 0;
    return contains(c_wide, character) ? 2 : 1;
}

int displayWidth(std::wstring_view text) noexcept {
    int width = 0;
    for (std::size_t i = 0; i < text.size();) width += displayWidth(nextCharacter(text, i));
    return width;
}

bool foldedEqual(std::wstring_view a, std::wstring_view b) noexcept { return foldedEqualAs(a, b); }

bool foldedEqual(std::string_view a, std::string_view b) noexcept { return foldedEqualAs(a, b); }

} // namespace Vn::Text
