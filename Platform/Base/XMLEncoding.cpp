#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/XMLEncodingInternal.h"

namespace Vn {

namespace {

using namespace std::string_view_literals;

constexpr char const * c_unknown = localizable("its encoding isn't known");
constexpr char const * c_broken = localizable("it isn't in the encoding that it claims");
constexpr char const * c_null = localizable("it has a null character");
constexpr char const * c_declaration = localizable("its declaration isn't one");

// The pseudo attributes of a declaration, and where it ends; 0 if there is none.
struct Declaration {
    std::string_view version;
    std::string_view encoding;
    std::string_view standalone;
    std::size_t end = 0;
};

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

void skipBlanks(std::string_view & text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
}

// One pseudo attribute, blanks in front of it included.
bool takeAttribute(std::string_view & text, std::string_view name, std::string_view & value) {
    std::string_view rest = text;
    skipBlanks(rest);
    if (rest.size() == text.size() || !rest.starts_with(name)) return false;
    rest.remove_prefix(name.size());
    skipBlanks(rest);
    if (!rest.starts_with('=')) return false;
    rest.remove_prefix(1);
    skipBlanks(rest);
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) return false;
    std::size_t const end = rest.find(rest.front(), 1);
    if (end == rest.npos) return false;
    value = rest.substr(1, end - 1);
    text = rest.substr(end + 1);
    return true;
}

// Reads the declaration of a text in which at least that is ASCII.  False if it is wrong.
bool readDeclaration(std::string_view text, Declaration & declaration) {
    constexpr std::string_view c_begin = "<?xml";
    if (!text.starts_with(c_begin)) return true;
    std::string_view rest = text.substr(c_begin.size());
    if (rest.empty() || !isBlank(rest.front())) return true; // an instruction of that beginning
    if (!takeAttribute(rest, "version", declaration.version)) return false;
    takeAttribute(rest, "encoding", declaration.encoding);
    takeAttribute(rest, "standalone", declaration.standalone);
    skipBlanks(rest);
    if (!rest.starts_with("?>")) return false;
    declaration.end = text.size() - rest.size() + 2;
    // What is in it is written again, so it must hold nothing else.
    return declaration.version.find_first_not_of("0123456789.") == std::string_view::npos &&
           (declaration.standalone.empty() || declaration.standalone == "yes" ||
            declaration.standalone == "no");
}

void appendUtf8(char32_t c, std::string & text) {
    auto const add = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) {
        add(c);
    } else if (c < 0x800) {
        add(0xC0 | c >> 6);
        add(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        add(0xE0 | c >> 12);
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    } else {
        add(0xF0 | c >> 18);
        add(0x80 | (c >> 12 & 0x3F));
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    }
}

bool fromUtf16(std::string_view bytes, bool isBigEndian, std::string & text) {
    if (bytes.size() % 2 != 0) return false;
    auto const unit = [&](std::size_t i) {
        auto const first = static_cast<std::uint8_t>(bytes[i]);
        auto const second = static_cast<std::uint8_t>(bytes[i + 1]);
        return static_cast<char32_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    };
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        char32_t c = unit(i);
        if (c >= 0xD800 && c < 0xE000) {
            if (c >= 0xDC00 || i + 2 >= bytes.size()) return false;
            i += 2;
            char32_t const low = unit(i);
            if (low < 0xDC00 || low >= 0xE000) return false;
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        }
        appendUtf8(c, text);
    }
    return true;
}

// Whether all of it is well-formed: no broken, overlong or surrogate sequences.
bool isUtf8(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        auto const first = static_cast<std::uint8_t>(bytes[i]);
        if (first < 0x80) {
            // Most are, so eight are looked at together.
            std::uint64_t eight = 0;
            while (bytes.size() - ++i >= sizeof eight) {
                std::memcpy(&eight, bytes.data() + i, sizeof eight);
                if (eight & 0x8080808080808080U) break;
                i += sizeof eight - 1;
            }
            continue;
        }
        std::size_t const length = first < 0xC2   ? 0
                                   : first < 0xE0 ? 2
                                   : first < 0xF0 ? 3
                                   : first < 0xF5 ? 4
                                                  : 0;
        if (length == 0 || bytes.size() - i < length) return false;
        // The second byte is narrower after some first ones.
        auto const second = static_cast<std::uint8_t>(bytes[i + 1]);
        std::uint8_t const low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
        std::uint8_t const high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
        if (second < low || second > high) return false;
        for (std::size_t j = 2; j < length; ++j)
            if ((static_cast<std::uint8_t>(bytes[i + j]) & 0xC0) != 0x80) return false;
        i += length;
    }
    return true;
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    for (std::string_view const each : names)
        if (Text::foldedEqual(name, each)) return true;
    return false;
}

// The text without its declaration, after one that names no encoding.
std::string withoutEncoding(Declaration const & declaration, std::string_view text) {
    std::string result;
    result.reserve(text.size());
    if (declaration.end > 0) {
        result += "<?xml version=\"" + std::string(declaration.version) + '"';
        if (!declaration.standalone.empty())
            result += " standalone=\"" + std::string(declaration.standalone) + '"';
        result += "?>";
    }
    result += text.substr(declaration.end);
    return result;
}

} // namespace

char const * decodeXml(std::string_view bytes, std::string & converted, std::string_view & text) {
    Declaration declaration;
    std::string wide;
    bool const isBig = bytes.starts_with("\xFE\xFF"sv) || bytes.starts_with("\0<"sv);
    bool const isLittle = bytes.starts_with("\xFF\xFE"sv) || bytes.starts_with("<\0"sv);
    text = bytes;
    if (isBig || isLittle) {
        if (bytes.front() != '<' && bytes.front() != '\0') bytes.remove_prefix(2);
        if (!fromUtf16(bytes, isBig, wide)) return c_broken;
        if (!readDeclaration(wide, declaration)) return c_declaration;
        if (!isOneOf(declaration.encoding, {"", "UTF-16", "UTF-16LE", "UTF-16BE"})) return c_broken;
        text = converted = withoutEncoding(declaration, wide);
    } else {
        if (bytes.starts_with("\xEF\xBB\xBF"sv)) text.remove_prefix(3);
        if (!readDeclaration(text, declaration)) return c_declaration;
        bool const isAscii = isOneOf(declaration.encoding, {"US-ASCII", "ASCII"});
        if (isOneOf(declaration.encoding, {"ISO-8859-1"})) {
            for (char const c : text) appendUtf8(static_cast<std::uint8_t>(c), wide);
            text = converted = withoutEncoding(declaration, wide);
        } else if (isAscii) {
            for (char const c : text)
                if (static_cast<std::uint8_t>(c) > 0x7F) return c_broken;
            text = converted = withoutEncoding(declaration, text);
        } else {
            // This one the parser doesn't convert.
            if (!isOneOf(declaration.encoding, {"", "UTF-8"})) return c_unknown;
            if (!isUtf8(text)) return c_broken;
        }
    }
    // By nulls the parser would guess at other encodings.
    return text.find('\0') == text.npos ? nullptr : c_null;
}

} // namespace Vn
