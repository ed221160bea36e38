#include <algorithm>
#include <iterator>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/LooseTextInternal.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"

namespace Vn::Expressions {

namespace {

// A character as it is meant.
struct Meant {
    wchar_t c;
    bool raised = false;
    bool dot = false;
};

bool isDigit(wchar_t c) { return Text::isDigit(static_cast<char32_t>(c)); }
bool isSpace(wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); }

struct Spelling {
    wchar_t typed;
    wchar_t const * meant;
};

// Characters that stand for others.  What is raised isn't here.
constexpr Spelling c_spellings[] = {
    {L'\u00D7', L"*"},       {L'\u2715', L"*"},      {L'\u2217', L"*"},
    {L'\u00F7', L"/"},       {L'\u2215', L"/"},      {L'\u2044', L"/"},
    {L'\u2212', L"-"},       {L'\u2010', L"-"},      {L'\u2011', L"-"},
    {L'\u2012', L"-"},       {L'\u2013', L"-"},      {L'\u2014', L"-"},
    {L'\u2018', L"'"},       {L'\u2019', L"'"},      {L'\u201B', L"'"},
    {L'\u2032', L"'"},       {L'\u02B9', L"'"},      {L'\u00B4', L"'"},
    {L'\u201C', L"\""},      {L'\u201D', L"\""},     {L'\u201E', L"\""},
    {L'\u201F', L"\""},      {L'\u2033', L"\""},     {L'\u02BA', L"\""},
    {L'\u02DA', L"\u00B0"},  {L'\u00BA', L"\u00B0"}, {L'\u2103', L"\u00B0C"},
    {L'\u2109', L"\u00B0F"}, {L'\u2126', L"\u03A9"}, {L'\u212A', L"K"},
    {L'\u212B', L"\u00C5"},  {L'\u200B', L""},       {L'\uFEFF', L""},
    {L'\u200E', L""},        {L'\u200F', L""},       {L'\u00BC', L" 1/4 "},
    {L'\u00BD', L" 1/2 "},   {L'\u00BE', L" 3/4 "},  {L'\u215B', L" 1/8 "},
    {L'\u215C', L" 3/8 "},   {L'\u215D', L" 5/8 "},  {L'\u215E', L" 7/8 "},
    {L'\u339C', L"mm"},      {L'\u339D', L"cm"},     {L'\u339E', L"km"},
    {L'\u33A1', L"m^2"},     {L'\u33A0', L"cm^2"},   {L'\u339F', L"mm^2"},
    {L'\u33A5', L"m^3"},     {L'\u33A4', L"cm^3"},   {L'\u338F', L"kg"},
    {L'\u338E', L"mg"},      {L'\u33A7', L"m/s"},    {L'\u33A8', L"m/s^2"}};

bool isMiddleDot(wchar_t c) {
    return c == L'\u00B7' || c == L'\u22C5' || c == L'\u2219' || c == L'\u2022' || c == L'\u30FB';
}

std::vector<Meant> meantCharacters(std::wstring_view text) {
    std::vector<Meant> meant;
    meant.reserve(text.size() + 8);
    for (wchar_t const c : text) {
        if (static_cast<char32_t>(c) < 0xA0) {
            meant.push_back({c});
        } else if (wchar_t const base = raised(c)) {
            meant.push_back({base, true});
        } else if (isMiddleDot(c)) {
            meant.push_back({L'*', false, true});
        } else if (c >= L'\uFF01' && c <= L'\uFF5E') { // full width
            meant.push_back({static_cast<wchar_t>(c - L'\uFF01' + L'!')});
        } else {
            auto const found = std::find_if(std::begin(c_spellings), std::end(c_spellings),
                                            [c](Spelling const & s) { return s.typed == c; });
            if (found == std::end(c_spellings))
                meant.push_back({c});
            else
                for (wchar_t const * m = found->meant; *m; ++m) meant.push_back({*m});
        }
    }
    return meant;
}

// Signs that are words by themselves.
bool isMoney(wchar_t c) {
    return c == L'$' || c == L'\u20AC' || c == L'\u00A3' || c == L'\u00A5' || c == L'\u00A2';
}

bool isLetter(wchar_t c) {
    if (c == L'\u00B5' || c == L'_') return true;
    auto const character = static_cast<char32_t>(c);
    return !Text::isPunctuation(character) && !Text::isSpace(character) &&
           !Text::isDigit(character);
}

class Scanner {
public:
    explicit Scanner(std::wstring_view text) : m_text(meantCharacters(text)) {}

    Pieces run() {
        while (m_at < m_text.size()) {
            if (isSpace(peek())) {
                m_bBlank = true;
                ++m_at;
            } else if (isDigit(peek()) || (isSeparator(peek()) && isPlainDigit(m_at + 1))) {
                m_text[m_at].raised ? raisedNumber() : number();
            } else if (m_text[m_at].raised) {
                raisedNumber();
            } else if (otherFraction()) {
                // Its pieces are there.
            } else if (isLetter(peek()) || isMoney(peek()) || peek() == L'\u00B0') {
                word();
            } else {
                sign();
            }
        }
        return std::move(m_pieces);
    }

private:
    wchar_t peek(std::size_t ahead = 0) const {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead].c : L'\0';
    }
    bool isPlainDigit(std::size_t at) const {
        return at < m_text.size() && isDigit(m_text[at].c) && !m_text[at].raised;
    }
    wchar_t characterAt(std::size_t at) const { return at < m_text.size() ? m_text[at].c : L'\0'; }
    static bool isSeparator(wchar_t c) { return c == L'.' || c == L','; }

    Piece & add(EPiece kind, std::wstring text) {
        m_pieces.push_back({kind, std::move(text), m_bBlank});
        m_bBlank = false;
        return m_pieces.back();
    }

    std::size_t endOfDigits(std::size_t at) const {
        while (isPlainDigit(at)) ++at;
        return at;
    }

    std::wstring textOf(std::size_t begin, std::size_t end) const {
        std::wstring text;
        for (std::size_t i = begin; i < end; ++i) text += m_text[i].c;
        return text;
    }

    void raisedNumber() {
        std::wstring text;
        while (m_at < m_text.size() && m_text[m_at].raised) text += m_text[m_at++].c;
        add(EPiece::Number, std::move(text)).raised = true;
    }

    // Where groups of three digits end that begin at `at`; `at` if there are none.  `groups` is
    // how many there are.
    std::size_t endOfGroups(std::size_t at, wchar_t separator, std::size_t & groups) const {
        groups = 0;
        while (characterAt(at) == separator && endOfDigits(at + 1) == at + 4) {
            at += 4;
            ++groups;
        }
        return at;
    }

    bool followsDivision() const {
        return !m_pieces.empty() && (m_pieces.back().isSign(L"/") || m_pieces.back().isSign(L"^"));
    }

    // "1,234,567.8" and the like in four notations.  False if it isn't one.
    bool groupedNumber() {
        std::size_t const first = endOfDigits(m_at);
        if (first == m_at || first - m_at > 3 || peek() == L'0' || followsDivision()) return false;
        wchar_t const separator = characterAt(first);
        bool const isQuote = separator == L'\'';
        if (!isSeparator(separator) && !isQuote && separator != L'_' && !isSpace(separator))
            return false;
        std::size_t groups = 0;
        std::size_t end = endOfGroups(first, separator, groups);
        if (groups == 0 || isPlainDigit(end)) return false;
        std::wstring text = textOf(m_at, first);
        for (std::size_t i = first; i < end; i += 4) text += textOf(i + 1, i + 4);

        wchar_t const next = characterAt(end);
        bool const hasDecimals = isSeparator(next) && next != separator && isPlainDigit(end + 1);
        if (next == separator && isSeparator(separator) && isPlainDigit(end + 1)) return false;
        // "1.500" and "1,500" may be decimal numbers.
        bool const isDecimal = isSeparator(separator) && groups == 1 && !hasDecimals;
        if (isDecimal && endOfExponent(end) != end) return false;
        if (isQuote && (next == L'"' || (next == L'\'' && groups == 1))) return false;
        if (isSpace(separator) && next == L'/') return false; // "1 128/2"
        if (hasDecimals) {
            std::size_t const endOfDecimals = endOfDigits(end + 1);
            text += textOf(end, endOfDecimals);
            end = endOfDecimals;
        }
        std::wstring decimal = isDecimal ? textOf(m_at, end) : std::wstring();
        m_at = end;
        add(EPiece::Number, std::move(text)).decimal = std::move(decimal);
        return true;
    }

    // The end of an exponent; `at` if there is none.
    std::size_t endOfExponent(std::size_t at) const {
        if (characterAt(at) != L'e' && characterAt(at) != L'E') return at;
        std::size_t digits = at + 1;
        if (characterAt(digits) == L'+' || characterAt(digits) == L'-') ++digits;
        std::size_t const end = endOfDigits(digits);
        return end == digits ? at : end;
    }

    static bool isDivisor(std::wstring_view text) {
        for (wchar_t const * const divisor : {L"2", L"4", L"8", L"16", L"32", L"64", L"128"})
            if (text == divisor) return true;
        return false;
    }

    // The end of a fraction "3/4" that begins at `at`; `at` if there is none.
    std::size_t endOfFraction(std::size_t at) const {
        std::size_t const slash = endOfDigits(at);
        if (slash == at || characterAt(slash) != L'/') return at;
        std::size_t const end = endOfDigits(slash + 1);
        if (isSeparator(characterAt(end)) && isPlainDigit(end + 1)) return at;
        // A power takes the divisor alone.
        if (end < m_text.size() && m_text[end].raised) return at;
        if (characterAt(end) == L'*' && characterAt(end + 1) == L'*') return at;
        return isDivisor(textOf(slash + 1, end)) ? end : at;
    }

    void number() {
        if (groupedNumber()) return;
        std::size_t const begin = m_at;
        // A fraction, alone or after a whole number.
        std::size_t end = endOfFraction(begin);
        if (end == begin) {
            std::size_t part = endOfDigits(begin);
            std::size_t const whole = part;
            while (part < m_text.size() && isSpace(m_text[part].c)) ++part;
            if (part > whole && whole > begin) {
                std::size_t const fraction = endOfFraction(part);
                if (fraction > part) {
                    m_at = fraction;
                    add(EPiece::Number, textOf(begin, whole) + L' ' + textOf(part, fraction));
                    return;
                }
            }
            end = whole;
            if (isSeparator(characterAt(end)) && isPlainDigit(end + 1)) end = endOfDigits(end + 1);
            end = endOfExponent(end);
        }
        m_at = end;
        add(EPiece::Number, textOf(begin, end));
        // "5." is a number, but a comma may separate arguments.
        if (peek() == L'.' && !isDigit(peek(1)) && peek(1) != L'.') ++m_at;
    }

    // "mmH2O", which is a word.
    static bool isWater(std::wstring_view text) {
        constexpr std::wstring_view c_water = L"H2O";
        return Text::foldedEqual(text.substr(text.size() - std::min(text.size(), c_water.size())),
                                 c_water);
    }

    // Whether digits within a word are the power of a unit that another follows: "m2K".
    static bool isSplitLater(std::wstring_view text, std::size_t digits, std::size_t rest) {
        return rest == digits + 1 && isUnitWord(text.substr(0, digits)) &&
               text.find_first_of(L"0123456789", rest) == text.npos && !isFeet(text, digits);
    }

    static bool isFeet(std::wstring_view text, std::size_t digits) {
        return Text::foldedEqual(text.substr(0, digits), L"ft");
    }

    // "m.p.h." is one word, while "N.m" is two: a dot after the last letter, or a letter that is no
    // unit, tells.
    bool abbreviation() {
        constexpr std::size_t c_most = 5;
        if (peek(1) != L'.') return false;
        std::wstring letters;
        std::size_t at = m_at;
        bool hasLastDot = false;
        bool areUnits = true;
        bool areSmall = true;
        while (at < m_text.size() && !m_text[at].raised && isLetter(m_text[at].c)) {
            if (letters.size() == c_most) return false;
            letters += m_text[at].c;
            areUnits &= isUnitWord(letters.substr(letters.size() - 1));
            areSmall &= letters.back() >= L'a' && letters.back() <= L'z';
            hasLastDot = characterAt(++at) == L'.';
            if (!hasLastDot) break;
            ++at;
        }
        if (letters.size() < 2 || (!hasLastDot && at < m_text.size() && isLetter(m_text[at].c)))
            return false;
        bool const isOne =
            letters.size() == 2 ? !areUnits && hasLastDot : hasLastDot || !areUnits || areSmall;
        if (!isOne) return false;
        // The halves of a day keep their dots, which tell them from attometers and picometers.
        bool const isTimeOfDay =
            Text::foldedEqual(letters, L"am") || Text::foldedEqual(letters, L"pm");
        if (isTimeOfDay) letters.insert(1, L".").append(L".");
        m_at = at;
        add(EPiece::Word, std::move(letters));
        m_bBlank = hasLastDot && characterAt(at) != L'-' && characterAt(at) != L'\0';
        return true;
    }

    void word() {
        std::size_t end = m_at + 1;
        if (isMoney(m_text[m_at].c)) {
            m_at = end;
            add(EPiece::Word, textOf(end - 1, end));
            return;
        }
        while (end < m_text.size() && !m_text[end].raised &&
               (isLetter(m_text[end].c) || (isDigit(m_text[end].c) && m_text[m_at].c != L'\u00B0')))
            ++end;
        if (end < m_text.size() && m_text[end].c == L'$' && textOf(m_at, end) == L"US") ++end;
        if (abbreviation()) return;
        std::wstring const text = textOf(m_at, end);
        // "x4" after "3".
        bool const isTimes = (text.front() == L'x' || text.front() == L'X') && text.size() > 1 &&
                             areDigits(std::wstring_view(text).substr(1)) && !m_bBlank &&
                             !m_pieces.empty() && m_pieces.back().kind == EPiece::Number;
        if (isTimes) {
            ++m_at;
            add(EPiece::Word, text.substr(0, 1));
            return;
        }
        // "ft6" in front of what ends a number: "5ft6in", "5ft6'".
        std::size_t const digits = text.find_first_of(L"0123456789");
        if (digits != text.npos) {
            std::size_t const rest = text.find_first_not_of(L"0123456789", digits);
            // Two digits are no power of a unit, and neither are others than these: "2h30", "2h5",
            // "5ft6".
            std::wstring_view const run = std::wstring_view(text).substr(digits, rest - digits);
            bool const isPower =
                run == L"2" || run == L"3" || run == L"4" || (run == L"6" && !isFeet(text, digits));
            bool const isFollowed = (rest != text.npos && !isSplitLater(text, digits, rest)) ||
                                    !isPower || characterAt(end) == L'\'' ||
                                    characterAt(end) == L'"' ||
                                    (isSeparator(characterAt(end)) && isPlainDigit(end + 1));
            bool const isAfterNumber =
                !m_pieces.empty() && m_pieces.back().kind == EPiece::Number && !isWater(text);
            if (isFollowed && isAfterNumber) end = m_at + digits;
        }
        std::wstring piece = textOf(m_at, end);
        m_at = end;
        add(EPiece::Word, std::move(piece));
    }

    // A fraction that the language doesn't have as one number.
    bool otherFraction() {
        wchar_t const * text = nullptr;
        switch (peek()) {
        case L'\u2153':
            text = L"1/3";
            break;
        case L'\u2154':
            text = L"2/3";
            break;
        case L'\u2155':
            text = L"1/5";
            break;
        case L'\u2159':
            text = L"1/6";
            break;
        default:
            return false;
        }
        ++m_at;
        bool const isMixed = !m_pieces.empty() && m_pieces.back().kind == EPiece::Number &&
                             areDigits(m_pieces.back().text);
        Piece whole{EPiece::Sign, L"(", m_bBlank};
        if (isMixed) {
            whole = m_pieces.back();
            m_pieces.pop_back();
        }
        m_pieces.push_back({EPiece::Sign, L"(", whole.blankBefore});
        if (isMixed) {
            m_pieces.push_back({EPiece::Number, whole.text});
            m_pieces.push_back({EPiece::Sign, L"+", true});
        }
        m_pieces.push_back({EPiece::Number, std::wstring(1, text[0]), isMixed});
        m_pieces.push_back({EPiece::Sign, L"/"});
        m_pieces.push_back({EPiece::Number, text + 2});
        m_pieces.push_back({EPiece::Sign, L")"});
        m_bBlank = false;
        return true;
    }

    void sign() {
        Meant const & meant = m_text[m_at];
        if (meant.c == L'*' && !meant.dot && peek(1) == L'*' && !m_text[m_at + 1].dot) {
            m_at += 2;
            add(EPiece::Sign, L"^");
            m_pieces.back().raised = true; // binds as a superscript does
            return;
        }
        if (meant.c == L'\'' && peek(1) == L'\'') {
            m_at += 2;
            add(EPiece::Sign, L"\"");
            return;
        }
        // The dot of an abbreviation.
        bool const isAfterWord = !m_pieces.empty() && m_pieces.back().kind == EPiece::Word;
        if (meant.c == L'.' && isAfterWord && !m_bBlank) {
            m_bBlank = peek(1) != L'-'; // what follows is another word: "N.m", but not "ft.-lb."
            ++m_at;
            return;
        }
        bool const opens = meant.c == L'[' || meant.c == L'{';
        bool const closes = meant.c == L']' || meant.c == L'}';
        wchar_t const c = opens ? L'(' : closes ? L')' : meant.c;
        add(EPiece::Sign, std::wstring(1, c)).dot = meant.dot;
        ++m_at;
    }

    std::vector<Meant> m_text;
    std::size_t m_at = 0;
    bool m_bBlank = false;
    Pieces m_pieces;
};

} // namespace

wchar_t raised(wchar_t c) {
    switch (c) {
    case L'\u00B9':
        return L'1';
    case L'\u00B2':
        return L'2';
    case L'\u00B3':
        return L'3';
    case L'\u207A':
        return L'+';
    case L'\u207B':
        return L'-';
    default:
        if (c == L'\u2070' || (c >= L'\u2074' && c <= L'\u2079'))
            return static_cast<wchar_t>(L'0' + (c - L'\u2070'));
        return L'\0';
    }
}

bool areDigits(std::wstring_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

Pieces takenApart(std::wstring_view text) { return Scanner(text).run(); }

std::wstring putTogether(Pieces const & pieces) {
    std::wstring text;
    for (Piece const & piece : pieces) {
        if (piece.blankBefore && !text.empty()) text += L' ';
        if (piece.raised && piece.kind == EPiece::Number) text += L'^';
        text += piece.text;
    }
    return text;
}

} // namespace Vn::Expressions
