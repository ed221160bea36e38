#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>
#include <type_traits>

#include "Platform/DataModel/File/Text.h"

namespace Vn::DataModel {

namespace {

constexpr bool c_wide = sizeof(wchar_t) > 2;
constexpr std::uint32_t c_last = 0x10FFFF;

using Unit = std::make_unsigned_t<wchar_t>;

std::uint32_t unit(wchar_t c) noexcept { return static_cast<Unit>(c); }

constexpr bool isSurrogate(std::uint32_t value) noexcept {
    return value >= 0xD800 && value <= 0xDFFF;
}

// How many bytes UTF-8 takes for a value, its scheme carried on to 32 bits.
constexpr unsigned lengthOf(std::uint32_t value) noexcept {
    if (value < 0x80) return 1;
    if (value < 0x800) return 2;
    if (value < 0x10000) return 3;
    if (value < 0x200000) return 4;
    if (value < 0x4000000) return 5;
    return value < 0x80000000U ? 6 : 7;
}

void append(std::string & out, std::uint32_t value) {
    unsigned const length = lengthOf(value);
    if (length == 1) {
        out += static_cast<char>(value);
        return;
    }
    // As many leading ones as bytes; the seventh byte leaves no bit for the value.
    unsigned const lead = (0xFF00U >> length) & 0xFFU;
    unsigned shift = 6 * (length - 1);
    out += static_cast<char>(lead | (shift < 32 ? value >> shift : 0));
    while (shift > 0) {
        shift -= 6;
        out += static_cast<char>(0x80U | ((value >> shift) & 0x3FU));
    }
}

// Reads one value of up to `longest` bytes, in its shortest form; false for anything else.
bool take(char const *& p, char const * end, unsigned longest, std::uint32_t & value) noexcept {
    auto const first = static_cast<unsigned char>(*p++);
    if (first < 0x80) {
        value = first;
        return true;
    }
    unsigned length = 2;
    while (length <= longest && (first & (0x80U >> length))) ++length;
    if (!(first & 0x40U) || length > longest || static_cast<std::size_t>(end - p) < length - 1)
        return false;
    std::uint64_t whole = length < 7 ? first & (0x7FU >> length) : 0;
    for (unsigned i = 1; i < length; ++i) {
        auto const next = static_cast<unsigned char>(*p++);
        if ((next & 0xC0U) != 0x80) return false;
        whole = whole << 6 | (next & 0x3FU);
    }
    if (whole > std::numeric_limits<std::uint32_t>::max()) return false;
    value = static_cast<std::uint32_t>(whole);
    return lengthOf(value) == length;
}

void push(std::wstring & text, std::uint32_t value) {
    if (c_wide || value < 0x10000) {
        text += static_cast<wchar_t>(value);
    } else if (value <= c_last) {
        text += static_cast<wchar_t>(0xD7C0 + (value >> 10));
        text += static_cast<wchar_t>(0xDC00 + (value & 0x3FF));
    } else
        text += static_cast<wchar_t>(0xFFFD); // there is no room for it
}

bool widenAscii(std::string_view bytes, std::wstring & text) {
    text.resize(bytes.size());
    unsigned char all = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        auto const c = static_cast<unsigned char>(bytes[i]);
        text[i] = static_cast<wchar_t>(c);
        all |= c;
    }
    return all < 0x80;
}

constexpr char c_hex[] = "0123456789abcdef";

} // namespace

bool isText(std::string_view bytes) noexcept {
    char const * p = bytes.data();
    char const * const end = p + bytes.size();
    while (p != end) {
        std::uint32_t value = 0;
        if (!take(p, end, 4, value) || value == 0 || value > c_last || isSurrogate(value))
            return false;
    }
    return true;
}

bool encodeText(std::wstring_view text, std::string & stored) {
    stored.resize(text.size());
    bool ascii = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        stored[i] = static_cast<char>(text[i]);
        ascii = ascii && unit(text[i]) - 1U < 0x7FU;
    }
    if (ascii) return true;
    stored.clear();
    bool good = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t value = unit(text[i]);
        if (!c_wide && value >= 0xD800 && value < 0xDC00 && i + 1 < text.size()) {
            std::uint32_t const low = unit(text[i + 1]);
            if (low >= 0xDC00 && low < 0xE000) {
                value = 0x10000 + ((value - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        good = good && value != 0 && value <= c_last && !isSurrogate(value);
        append(stored, value);
    }
    return good;
}

bool decodeText(std::string_view stored, std::wstring & text) {
    if (widenAscii(stored, text)) return true;
    text.clear();
    char const * p = stored.data();
    char const * const end = p + stored.size();
    while (p != end) {
        std::uint32_t value = 0;
        if (!take(p, end, 4, value) || value > c_last || isSurrogate(value)) return false;
        push(text, value);
    }
    return true;
}

bool decodeBytes(std::string_view stored, std::wstring & text) {
    text.clear();
    char const * p = stored.data();
    char const * const end = p + stored.size();
    while (p != end) {
        std::uint32_t value = 0;
        if (!take(p, end, 7, value)) return false;
        push(text, value);
    }
    return true;
}

void appendJsonText(std::string & json, std::string_view stored, bool isText) {
    if (!isText) {
        json += "{\"bytes\":\"";
        for (char const c : stored) {
            auto const byte = static_cast<unsigned char>(c);
            json += c_hex[byte >> 4];
            json += c_hex[byte & 15];
        }
        json += "\"}";
        return;
    }
    json += '"';
    for (char const c : stored) {
        auto const byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (byte < 0x20) {
            json += "\\u00";
            json += c_hex[byte >> 4];
            json += c_hex[byte & 15];
        } else
            json += c;
    }
    json += '"';
}

void appendJson(std::string & json, long long value) {
    char digits[24];
    auto const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    json.append(digits, end);
}

namespace {

template <class Real>
void appendReal(std::string & json, Real value) {
    if (std::isnan(value)) {
        json += "null";
        return;
    }
    if (std::isinf(value)) {
        json += value < 0 ? "-1e999" : "1e999";
        return;
    }
    char digits[40];
    auto const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    std::string_view const text(digits, static_cast<std::size_t>(end - digits));
    json += text;
    // A whole number stays a real one for any reader of the JSON, minus zero above all.
    if (text.find_first_of(".e") == std::string_view::npos) json += ".0";
}

} // namespace

void appendJson(std::string & json, double value) { appendReal(json, value); }

void appendJson(std::string & json, float value) { appendReal(json, value); }

bool JsonReader::skip(std::string_view word) noexcept {
    if (static_cast<std::size_t>(m_pEnd - m_p) < word.size() ||
        std::string_view(m_p, word.size()) != word)
        return false;
    m_p += word.size();
    return true;
}

bool JsonReader::readInteger(long long & value) noexcept {
    auto const [end, error] = std::from_chars(m_p, m_pEnd, value);
    if (error != std::errc() || end == m_p) return false;
    m_p = end;
    return true;
}

template <class Real>
bool JsonReader::readAnyReal(Real & value) noexcept {
    if (skip("null")) {
        value = std::numeric_limits<Real>::quiet_NaN();
        return true;
    }
    if (skip("1e999")) {
        value = std::numeric_limits<Real>::infinity();
        return true;
    }
    if (skip("-1e999")) {
        value = -std::numeric_limits<Real>::infinity();
        return true;
    }
    // from_chars would take "inf" and "nan" too.
    char const first = peek();
    bool const negative = first == '-';
    char const * const digit = m_p + (negative ? 1 : 0);
    if (digit == m_pEnd || *digit < '0' || *digit > '9') return false;
    auto const [end, error] = std::from_chars(m_p, m_pEnd, value);
    if (error != std::errc()) return false;
    m_p = end;
    return true;
}

bool JsonReader::readReal(double & value) noexcept { return readAnyReal(value); }

bool JsonReader::readReal(float & value) noexcept { return readAnyReal(value); }

bool JsonReader::readHex(unsigned digits, unsigned & value) noexcept {
    value = 0;
    for (; digits > 0; --digits) {
        if (m_p == m_pEnd) return false;
        char const c = *m_p++;
        unsigned digit = 0;
        if (c >= '0' && c <= '9')
            digit = static_cast<unsigned>(c - '0');
        else if (c >= 'a' && c <= 'f')
            digit = static_cast<unsigned>(c - 'a') + 10;
        else if (c >= 'A' && c <= 'F')
            digit = static_cast<unsigned>(c - 'A') + 10;
        else
            return false;
        value = value << 4 | digit;
    }
    return true;
}

bool JsonReader::readString(std::string & text) {
    text.clear();
    if (!skip('"')) return false;
    while (m_p != m_pEnd) {
        char const c = *m_p;
        if (c == '"') {
            ++m_p;
            return true;
        }
        if (static_cast<unsigned char>(c) < 0x20) return false;
        if (c != '\\') {
            std::uint32_t value = 0;
            char const * const start = m_p;
            if (!take(m_p, m_pEnd, 4, value) || value > c_last || isSurrogate(value)) return false;
            text.append(start, m_p);
            continue;
        }
        ++m_p;
        constexpr std::string_view c_escapes = "\"\\/bfnrt";
        constexpr std::string_view c_meanings = "\"\\/\b\f\n\r\t";
        char const escape = peek();
        if (std::size_t const i = c_escapes.find(escape); i != std::string_view::npos) {
            text += c_meanings[i];
            ++m_p;
            continue;
        }
        unsigned value = 0;
        if (!skip('u') || !readHex(4, value)) return false;
        if (value >= 0xD800 && value < 0xDC00) {
            unsigned low = 0;
            if (!skip("\\u") || !readHex(4, low) || low < 0xDC00 || low > 0xDFFF) return false;
            value = 0x10000 + ((value - 0xD800) << 10) + (low - 0xDC00);
        }
        if (isSurrogate(value)) return false;
        append(text, value);
    }
    return false;
}

bool JsonReader::readText(std::string & stored, bool & isText) {
    isText = peek() == '"';
    if (isText) return readString(stored);
    stored.clear();
    if (!skip("{\"bytes\":\"")) return false;
    while (peek() != '"') {
        unsigned byte = 0;
        if (!readHex(2, byte)) return false;
        stored += static_cast<char>(byte);
    }
    return skip("\"}");
}

} // namespace Vn::DataModel
