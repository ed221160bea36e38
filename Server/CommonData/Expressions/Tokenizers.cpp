// The five forms of tokens, and the making of a list.

#include <algorithm>
#include <cmath>
#include <limits>

#include "Platform/Base/Numeric.h"
#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/Utils.h"

namespace Vn::Expressions {

using Units::Utils::essentiallyZero;

namespace {

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool isSpace(wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); }
bool isDecimalSeparator(wchar_t c) { return c == L'.' || c == L','; }

// 10 to the power of a count of digits.
double powerOfTen(std::size_t count) {
    static constexpr double c_exact[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    return count < std::size(c_exact) ? c_exact[count]
                                      : Numeric::power(10.0, static_cast<double>(count));
}

// A place in the text that moves forward as things are read.
class Reader {
public:
    Reader(std::wstring_view text, std::size_t position) : m_text(text), m_position(position) {}

    std::size_t position() const { return m_position; }
    void position(std::size_t position) { m_position = position; }
    bool atEnd() const { return m_position >= m_text.size(); }
    // The next character; none at the end.
    wchar_t peek() const { return atEnd() ? L'\0' : m_text[m_position]; }
    bool at(wchar_t c) const { return !atEnd() && m_text[m_position] == c; }

    void skipSpace() {
        while (!atEnd() && isSpace(m_text[m_position])) ++m_position;
    }

    // Steps over `c` if it is next.
    bool take(wchar_t c) {
        if (!at(c)) return false;
        ++m_position;
        return true;
    }

    // Steps over the text of a token if it is next.
    bool take(EToken token) {
        std::wstring const & wanted = Tokens::get()->getString(token);
        if (atEnd() || wanted.empty() || m_text[m_position] != wanted.front()) return false;
        std::size_t length = 0;
        if (!Tokens::get()->matchesToken(m_text, m_position, token, length)) return false;
        m_position += length;
        return true;
    }

    // Reads decimal digits into `value` and returns how many there were.
    std::size_t readDigits(double & value) {
        std::size_t const start = m_position;
        double sum = 0.0;
        for (; m_position < m_text.size() && isDigit(m_text[m_position]); ++m_position)
            sum = sum * 10.0 + (m_text[m_position] - L'0');
        value = sum;
        return m_position - start;
    }

    // Reads a numerator, "/" and a denominator that is a power of two from 2 to 128.  On failure
    // the position may have moved.
    bool readFraction(double & numerator, double & denominator) {
        skipSpace();
        if (readDigits(numerator) == 0) return false;
        skipSpace();
        if (!take(L'/') || atEnd()) return false;
        skipSpace();
        if (readDigits(denominator) == 0) return false;
        return denominator == 2.0 || denominator == 4.0 || denominator == 8.0 ||
               denominator == 16.0 || denominator == 32.0 || denominator == 64.0 ||
               denominator == 128.0;
    }

    // The same, moving only if it worked.
    bool tryFraction(double & numerator, double & denominator) {
        std::size_t const start = m_position;
        if (readFraction(numerator, denominator)) return true;
        m_position = start;
        return false;
    }

    // Reads digits and decimals after either separator.  Returns whether there were any digits.
    bool readDecimal(double & value, std::size_t & decimals) {
        std::size_t digits = readDigits(value);
        decimals = 0;
        if (!atEnd() && isDecimalSeparator(peek()) && m_position + 1 < m_text.size()) {
            ++m_position;
            double fraction = 0.0;
            decimals = readDigits(fraction);
            digits += decimals;
            value += fraction / powerOfTen(decimals);
        }
        return digits > 0;
    }

private:
    std::wstring_view const m_text;
    std::size_t m_position;
};

short saturatedShort(std::size_t count) {
    return static_cast<short>(
        std::min(count, static_cast<std::size_t>(std::numeric_limits<short>::max())));
}

// The count of decimals that write 1 over a power of two exactly, 8 at most.
short fractionDigits(double denominator) {
    switch (Numeric::saturate<int>(denominator)) {
    case 2:
        return 1;
    case 4:
        return 2;
    case 8:
        return 3;
    case 16:
        return 4;
    case 32:
        return 5;
    case 64:
        return 6;
    case 128:
        return 7;
    default:
        return 8;
    }
}

void setPrecision(Reading & reading, short precision) {
    reading.format.precision = precision;
    reading.format.hasPrecision = true;
}

// "2", "2.05", ",5", "2,2e-6".
class TokenizerDecimal : public Tokenizer {
public:
    TokenizerDecimal() : Tokenizer(FirstDigit | FirstSeparator) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        Reader in(text, position);
        if (!isDigit(text[position]) &&
            !(isDecimalSeparator(text[position]) && position + 1 < text.size() &&
              isDigit(text[position + 1])))
            return {};
        double whole = 0.0;
        double fraction = 0.0;
        std::size_t decimals = 0;
        in.readDigits(whole);
        if (!in.atEnd() && isDecimalSeparator(in.peek())) {
            in.position(in.position() + 1);
            decimals = in.readDigits(fraction);
            fraction /= powerOfTen(decimals);
        }
        Reading reading;
        reading.value = whole + fraction;
        if (in.at(L'e') || in.at(L'E')) {
            in.position(in.position() + 1);
            double exponent = 0.0;
            if (!readExponent(in, exponent)) return {};
            reading.value *= Numeric::power(10.0, exponent);
            reading.format.scientific = true;
            reading.format.exponent = Numeric::saturate<short>(exponent);
            // "22E-2" comes back as "2.2E-01".
            for (int e = reading.format.exponent; whole > 10.0 && e < 0; ++e) {
                ++decimals;
                whole /= 10.0;
            }
        }
        if (!Units::Utils::isFiniteNumber(reading.value))
            reading.value = std::numeric_limits<double>::max();
        setPrecision(reading, saturatedShort(decimals));
        reading.length = in.position() - position;
        return reading;
    }

    // What stands after the "E".  False if that isn't an exponent, and the whole no number.
    static bool readExponent(Reader & in, double & exponent) {
        if (in.atEnd()) return false;
        std::size_t const sign = in.position();
        bool const negative = in.at(L'-');
        if ((in.take(L'+') || in.take(L'-')) && in.atEnd()) {
            in.position(sign); // the sign is a token of its own
            return true;
        }
        if (in.readDigits(exponent) == 0) return false;
        if (negative) exponent = -exponent;
        return true;
    }
};

// "1 1/2", "3/4", with an inch mark or without.
class TokenizerFractional : public Tokenizer {
public:
    TokenizerFractional() : Tokenizer(FirstDigit) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        Reader in(text, position);
        double whole = 0.0;
        double numerator = 0.0;
        double denominator = 0.0;
        if (in.readDigits(whole) == 0) return {};
        if (!in.tryFraction(numerator, denominator)) {
            whole = 0.0;
            in.position(position);
            if (!in.readFraction(numerator, denominator)) return {};
        }
        in.skipSpace(); // the blanks belong to the token even if no mark follows
        Reading reading;
        reading.format.lengthDisplay = Units::LengthFractional;
        setPrecision(reading, fractionDigits(denominator));
        reading.value = essentiallyZero(denominator) ? whole : whole + numerator / denominator;
        if (in.take(e_INCH) || in.take(e_INCH_ABBR) || in.take(L'"')) reading.madeUpName = e_INCH;
        reading.length = in.position() - position;
        return reading;
    }
};

// "2' 6 3/4"", "2'", "6"", "6 3/4"".
class TokenizerArchitect : public Tokenizer {
public:
    TokenizerArchitect() : Tokenizer(FirstDigit) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        Reader in(text, position);
        double first = 0.0;
        if (in.readDigits(first) == 0) return {};
        in.skipSpace();
        double feet = 0.0;
        double inches = 0.0;
        double numerator = 0.0;
        double denominator = 0.0;
        bool inchesOnly = false;
        if (in.take(L'\'')) {
            feet = first;
            std::size_t const afterMark = in.position();
            if (!readInches(in, inches, numerator, denominator)) {
                in.position(afterMark);
                inches = numerator = denominator = 0.0;
            }
        } else {
            inches = first;
            if (in.take(L'"')) {
                inchesOnly = true;
            } else {
                if (!in.readFraction(numerator, denominator)) return {};
                in.skipSpace();
                if (!in.take(L'"')) return {};
            }
        }

        double const fraction = essentiallyZero(denominator) ? 0.0 : numerator / denominator;
        Reading reading;
        reading.value = feet + (inches + fraction) / 12.0;
        if (inchesOnly) reading.value *= 12.0;
        reading.format.lengthDisplay =
            inchesOnly ? Units::LengthFractional : Units::LengthArchitectural;
        setPrecision(reading, fractionDigits(denominator));
        reading.madeUpName = inchesOnly ? e_INCH : e_FOOT;
        reading.textEndsBeforeMark = true;
        reading.length = in.position() - position;
        return reading;
    }

    // What stands after the mark of feet.  False if that isn't inches with their mark.
    static bool readInches(Reader & in, double & inches, double & numerator, double & denominator) {
        if (in.atEnd()) return false;
        in.skipSpace();
        if (in.take(L'-') && in.atEnd()) return false;
        in.skipSpace();
        std::size_t const digits = in.position();
        if (in.readDigits(inches) == 0) return false;
        in.skipSpace();
        if (in.take(L'"')) return true;
        if (!in.tryFraction(numerator, denominator)) {
            in.position(digits);
            inches = 0.0;
            if (!in.readFraction(numerator, denominator)) return false;
        }
        in.skipSpace();
        return in.take(L'"');
    }
};

// "45 deg 30' 30"", "45 deg 31'".
class TokenizerDegMinSec : public Tokenizer {
public:
    TokenizerDegMinSec() : Tokenizer(FirstDigit) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        Reader in(text, position);
        double degrees = 0.0;
        double minutes = 0.0;
        if (in.readDigits(degrees) == 0) return {};
        in.skipSpace();
        if (!in.take(e_DEGREE) && !in.take(e_DEGREE_ABBR) && !in.take(e_DEGREE_SYM)) return {};
        in.skipSpace();
        if (in.readDigits(minutes) == 0) return {};
        in.skipSpace();
        if (!in.take(L'\'')) return {};

        std::size_t const afterMark = in.position();
        double seconds = 0.0;
        std::size_t precision = 1;
        if (!readSeconds(in, seconds, precision)) {
            in.position(afterMark);
            seconds = 0.0;
            precision = 1;
        }
        Reading reading;
        reading.value = degrees + minutes / 60.0 + seconds / 3600.0;
        reading.format.degreeDisplay = Units::DegreeDegMinSec;
        setPrecision(reading, saturatedShort(precision));
        reading.madeUpName = e_DEGREE;
        reading.length = in.position() - position;
        return reading;
    }

    // What stands after the mark of minutes.  False if the mark of seconds is missing; the seconds
    // themselves may be.
    static bool readSeconds(Reader & in, double & seconds, std::size_t & precision) {
        in.skipSpace();
        std::size_t const start = in.position();
        std::size_t decimals = 0;
        if (in.readDecimal(seconds, decimals))
            precision = decimals + 2;
        else
            in.position(start); // a lone separator doesn't make seconds
        in.skipSpace();
        return in.take(L'"');
    }
};

// A name, function, unit or constant: which of them can't be told apart here.
class TokenizerNFUC : public Tokenizer {
public:
    TokenizerNFUC() : Tokenizer(FirstOther) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        std::size_t end = position;
        Tokens::get()->invalidNameCharsInStr(text, end, true);
        Reading reading;
        reading.kind = TK_NAME;
        reading.length = end - position;
        return reading;
    }
};

TokenizerDecimal const s_decimal VN_LOAD_EXPRESSION_TABLES;
TokenizerFractional const s_fractional VN_LOAD_EXPRESSION_TABLES;
TokenizerArchitect const s_architect VN_LOAD_EXPRESSION_TABLES;
TokenizerDegMinSec const s_degMinSec VN_LOAD_EXPRESSION_TABLES;
TokenizerNFUC const s_nfuc VN_LOAD_EXPRESSION_TABLES;

// They register nowhere, but their turn is a part of the order.
struct TokenizersNote {
    TokenizersNote() {
        RegistrationLog::note(RegistrationLog::EKind::Static, "Expressions.Tokenizers", this);
    }
};
[[maybe_unused]] TokenizersNote const s_note VN_LOAD_EXPRESSION_TABLES;

TokenKind operatorKind(wchar_t c) {
    switch (c) {
    case L'%':
        return TK_MODULO;
    case L'(':
        return TK_LEFT_PAREN;
    case L')':
        return TK_RIGHT_PAREN;
    case L'*':
        return TK_MULTIPLY;
    case L'+':
        return TK_PLUS;
    case L'-':
        return TK_MINUS;
    case L'/':
        return TK_DIVIDE;
    case L';':
        return TK_SEMICOLON;
    case L'=':
        return TK_EQUALS;
    case L'^':
        return TK_POWER;
    default:
        return TK_UNKNOWN;
    }
}

int firstOf(wchar_t c) {
    return isDigit(c)              ? Tokenizer::FirstDigit
           : isDecimalSeparator(c) ? Tokenizer::FirstSeparator
                                   : Tokenizer::FirstOther;
}

} // namespace

// ---- Tokenizer ----------------------------------------------------------------------------------

Tokenizer::Tokenizer(int first) { TokenizerRegistry::get()->m_tokenizers.push_back({this, first}); }

Tokenizer::~Tokenizer() {
    std::erase_if(TokenizerRegistry::get()->m_tokenizers,
                  [this](auto const & entry) { return entry.tokenizer == this; });
}

// ---- TokenizerRegistry --------------------------------------------------------------------------

TokenizerRegistry * TokenizerRegistry::get() {
    static constinit Shared<TokenizerRegistry> s_registry;
    return &s_registry.get([] { return new TokenizerRegistry; });
}

Reading TokenizerRegistry::readLongest(std::wstring_view text, std::size_t position) const {
    int const first = firstOf(text[position]);
    Reading longest;
    for (Entry const & entry : m_tokenizers) {
        if ((entry.first & first) == 0) continue;
        Reading const reading = entry.tokenizer->read(text, position);
        if (reading.length > longest.length) longest = reading;
    }
    return longest;
}

void TokenizerRegistry::tokenize(std::wstring_view text, TokenList & list) const {
    TokenStream stream(text, list);
    while (stream.after(list.last())) {}
}

// ---- TokenStream --------------------------------------------------------------------------------

TokenStream::TokenStream(std::wstring_view text, TokenList & list)
    : m_rRegistry(*TokenizerRegistry::get()), m_text(text), m_rList(list) {
    m_rList.append(TK_START);
}

unsigned int TokenStream::position16(std::size_t index) {
    if constexpr (sizeof(wchar_t) > 2) {
        for (; m_countedTo < index; ++m_countedTo) {
            auto const character = static_cast<char32_t>(m_text[m_countedTo]);
            if (character > 0xFFFF) ++m_extra;
        }
    }
    return static_cast<unsigned int>(index + m_extra);
}

Token * TokenStream::append(TokenKind kind, std::size_t end, std::wstring_view text) {
    Token * const token = m_rList.append(kind);
    token->start = position16(m_position);
    token->end = position16(end);
    token->text = text;
    token->located = true;
    return token;
}

void TokenStream::readNext() {
    while (m_position < m_text.size() && isSpace(m_text[m_position])) ++m_position;
    if (m_position == m_text.size()) {
        append(TK_END, m_position, {});
        m_finished = true;
        return;
    }
    if (TokenKind const kind = operatorKind(m_text[m_position]); kind != TK_UNKNOWN) {
        append(kind, m_position + 1, m_text.substr(m_position, 1));
        ++m_position;
        return;
    }
    Reading const reading = m_rRegistry.readLongest(m_text, m_position);
    if (reading.length == 0) {
        append(TK_UNKNOWN, m_text.size(), m_text.substr(m_position));
        m_finished = true;
        return;
    }
    std::size_t const end = m_position + reading.length;
    std::size_t const textEnd = reading.textEndsBeforeMark ? end - 1 : end;
    Token * const token =
        append(reading.kind, textEnd, m_text.substr(m_position, textEnd - m_position));
    token->value = reading.value;
    token->format = reading.format;
    if (reading.madeUpName != e_NONE) {
        m_position = end - 1;
        append(TK_NAME, end, Tokens::get()->getString(reading.madeUpName));
    }
    m_position = end;
}

} // namespace Vn::Expressions
