#include "Server/CommonData/Expressions/DoubtsInternal.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/LooseTextInternal.h"

namespace Vn::Expressions {

namespace {

bool isDigit(wchar_t c) { return Text::isDigit(static_cast<char32_t>(c)); }
bool isSpace(wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); }
bool isLetter(wchar_t c) {
    return !isDigit(c) && !isSpace(c) && !Text::isPunctuation(static_cast<char32_t>(c));
}

bool isRaised(wchar_t c) { return isDigit(raised(c)); } // a digit above the line

// A text by its pieces: "n" for a number, "e" for one with an exponent, "w" for a word, and signs
// as they are.  "5 m^2 / 2" is "nw^n/n".
class Shape {
public:
    explicit Shape(std::wstring_view text) {
        bool isAfterBlank = false;
        for (std::size_t i = 0; i < text.size();) {
            std::size_t const begin = i;
            if (isSpace(text[i])) {
                isAfterBlank = true;
                ++i;
                continue;
            }
            m_blanks.push_back(isAfterBlank);
            isAfterBlank = false;
            if (isDigit(text[i])) {
                bool const hasExponent = passNumber(text, i);
                add(hasExponent ? L'e' : L'n', text.substr(begin, i - begin));
            } else if (isLetter(text[i])) {
                while (i < text.size() && (isLetter(text[i]) || text[i] == L'_')) ++i;
                add(L'w', text.substr(begin, i - begin));
            } else {
                add(text[i], text.substr(begin, 1));
                ++i;
            }
        }
    }

    bool has(std::wstring_view shape) const { return m_shape.find(shape) != m_shape.npos; }
    bool hasAny(std::initializer_list<wchar_t const *> shapes) const {
        for (wchar_t const * const shape : shapes)
            if (has(shape)) return true;
        return false;
    }
    std::size_t size() const { return m_shape.size(); }
    wchar_t operator[](std::size_t place) const {
        return place < m_shape.size() ? m_shape[place] : L'\0';
    }
    std::wstring_view textAt(std::size_t place) const { return m_texts[place]; }
    // Whether no blank stands in front of a piece.
    bool isTight(std::size_t place) const { return !m_blanks[place]; }
    // Whether a number follows a piece without a blank.
    bool isDigitAfter(std::size_t place) const {
        return place + 1 < m_shape.size() && m_texts[place + 1].size() > 0 &&
               isDigit(m_texts[place + 1].front()) && !m_blanks[place + 1];
    }

private:
    // Answers whether there is an exponent.
    static bool passNumber(std::wstring_view text, std::size_t & i) {
        auto const passDigits = [&] {
            while (i < text.size() && isDigit(text[i])) ++i;
        };
        passDigits();
        if (i + 1 < text.size() && (text[i] == L'.' || text[i] == L',') && isDigit(text[i + 1])) {
            ++i;
            passDigits();
        }
        std::size_t at = i;
        if (at >= text.size() || (text[at] != L'E' && text[at] != L'e')) return false;
        ++at;
        if (at < text.size() && (text[at] == L'+' || text[at] == L'-')) ++at;
        if (at >= text.size() || !isDigit(text[at])) return false;
        i = at;
        passDigits();
        return true;
    }
    void add(wchar_t sign, std::wstring_view text) {
        m_shape += sign;
        m_texts.emplace_back(text);
    }

    std::wstring m_shape;
    std::vector<bool> m_blanks; // whether a blank stands in front of a piece
    std::vector<std::wstring> m_texts;
};

// The language reads "^2 / 2" and "^2 1/2" as the power of a fraction, and takes a power of all
// that a product has so far.
bool hasOddPower(Shape const & shape) {
    return shape.hasAny({L"^n/n", L"^-n/n", L"^nn", L"^-nn", L"*n^", L"/n^", L"*e^", L"e^"});
}

// "5 in in cm": a conversion to people, a product to the language.
bool mayConvert(Shape const & typed) {
    for (std::size_t i = 1; i + 1 < typed.size(); ++i) {
        if (typed[i] != L'w' || typed.textAt(i) != L"in") continue;
        wchar_t const before = typed[i - 1];
        wchar_t const after = typed[i + 1];
        bool const isAfterUnit = before != L'n' && before != L'e' && before != L'(';
        if (isAfterUnit && (after == L'w' || after == L'\u00B0' || after == L'%')) return true;
    }
    return false;
}

// Feet and inches with a sign within, or with more after them: "5' 3-1/2\"", "10'-3*2".
bool hasOddFeet(Shape const & typed, Shape const & correction) {
    return typed.hasAny({L"'n-n/n", L"'-n-n/n", L"'-n*", L"'-n/", L"'-n^", L"'-n%"}) ||
           correction.hasAny(
               {L"\"*", L"\"/", L"\"^", L"\"%", L"'*", L"'/", L"'^", L"'%", L"\"-n/n"});
}

// Without brackets nobody knows how far a function or a root reaches: "sin 2 pi", "\u221A16/4".
bool reachesTooFar(Shape const & typed, Shape const & correction) {
    if (typed.has(L"(") || typed.has(L"[")) return false;
    bool const hasProduct = typed.hasAny({L"*", L"\u00D7", L"\u00B7", L"\u22C5", L"x"});
    for (std::size_t i = 0; i + 1 < correction.size(); ++i) {
        if (correction[i] != L'w' || correction[i + 1] != L'(') continue;
        std::size_t end = i + 2;
        for (; end < correction.size() && correction[end] != L')'; ++end)
            if (correction[end] == L'/' || correction[end] == L'e') return true;
        if (correction[end + 1] == L'*' && !hasProduct && correction[end + 2] != L'n') return true;
    }
    return false;
}

// "tan(pi/4 rad)" holds radians, and "sin(90 - pi)" degrees beside PI.
bool hasOddAngle(Shape const & correction) {
    std::size_t radians = 0;
    bool hasPi = false;
    bool hasSum = false;
    int depth = 0;
    bool hasDegrees = false;
    std::size_t functions = 0;
    for (std::size_t i = 0; i < correction.size(); ++i) {
        wchar_t const sign = correction[i];
        depth += (sign == L'(') - (sign == L')');
        hasSum |= depth > 0 && (sign == L'+' || sign == L'-') && correction[i - 1] != L'(';
        hasDegrees |= sign == L'\u00B0';
        if (sign != L'w') continue;
        std::wstring_view const word = correction.textAt(i);
        if (word == L"rad") {
            ++radians;
            hasPi |= i > 0 && correction[i - 1] == L'w' && correction.textAt(i - 1) == L"PI";
        }
        hasDegrees |= word == L"deg" || word == L"degree";
        functions += correction[i + 1] == L'(';
    }
    return hasPi && (radians > 1 || functions > 1 || hasSum || hasDegrees);
}

// "20 \u00B0C 5 \u00B0C" and "10 mm 5 mm" are lists, or lack a sign.
bool isOddSum(Shape const & typed, Shape const & correction) {
    if (typed.has(L"+")) return false;
    std::wstring_view before;
    for (std::size_t i = 0; i + 3 < correction.size(); ++i) {
        if (correction[i] != L'w' || correction[i + 1] != L'+') continue;
        before = correction.textAt(i);
        if (before == L"C" || before == L"F") return true;
        for (std::size_t j = i + 2; j < correction.size() && correction[j] != L'+'; ++j)
            if (correction[j] == L'w' && correction.textAt(j) == before) return true;
    }
    return false;
}

// An hour has no powers: "2h3" is a time of day, or a slip.
bool hasPowerOfTime(Shape const & typed, Shape const & correction) {
    if (typed.has(L"w^")) return false;
    for (std::size_t i = 0; i + 1 < correction.size(); ++i)
        if (correction[i] == L'w' && correction[i + 1] == L'^' &&
            (correction.textAt(i) == L"hr" || correction.textAt(i) == L"min"))
            return true;
    return false;
}

// "a" is an ampere only straight after a number: "a foot", "10 psi a".
bool hasArticle(Shape const & typed) {
    for (std::size_t i = 0; i < typed.size(); ++i)
        if (typed[i] == L'w' && typed.textAt(i) == L"a" &&
            (i == 0 || (typed[i - 1] != L'n' && typed[i - 1] != L'e')))
            return true;
    return false;
}

// "1.5x10-3" is a power of ten whose sign sank.
bool hasSunkenPower(Shape const & typed) {
    for (std::size_t i = 1; i + 2 < typed.size(); ++i) {
        std::wstring_view const before = typed.textAt(i - 1);
        bool const isTimes = before == L"x" || before == L"X" || before == L"*" ||
                             before == L"\u00D7" || before == L"\u00B7";
        if (isTimes && typed.textAt(i) == L"10" && (typed[i + 1] == L'-' || typed[i + 1] == L'+') &&
            typed.isDigitAfter(i + 1) && typed.isTight(i + 1))
            return true;
    }
    return false;
}

// What else people read in more than one way.
bool isOddNotation(Shape const & typed, Shape const & correction) {
    if (typed.has(L"/n%") && !correction.has(L"(n/n)")) return true;    // "10/2%"
    if (typed.has(L"*") && !typed.has(L"/(") && correction.has(L"/(w")) // "5 s/ft*lbs"
        return true;
    for (std::size_t i = 0; i + 1 < typed.size(); ++i) {
        std::wstring_view const text = typed.textAt(i);
        // A sign straight in front of a digit: "5 \u03A91", "2 m\u00B35".
        wchar_t const last = text.back();
        bool const isSign = isLetter(last) ? last > L'\u007F' && last != L'\u03C0' : isRaised(last);
        if (isSign && typed.isDigitAfter(i)) return true;
        if (text == L"0" && typed[i + 1] == L'w' && typed.textAt(i + 1) == L"x") return true;
        // A fraction with thousands: "5/1,000".
        if (typed[i] == L'/' && typed[i + 1] == L'n' &&
            typed.textAt(i + 1).find(L',') != std::wstring_view::npos)
            return true;
        // "5 sq mm2".
        bool const isSquare =
            text == L"sq" || text == L"square" || text == L"cu" || text == L"cubic";
        wchar_t const power = typed[i + 2];
        if (isSquare && typed[i + 1] == L'w' &&
            (power == L'^' || isRaised(power) || (power == L'n' && typed.isDigitAfter(i + 1))))
            return true;
    }
    return false;
}

} // namespace

bool isDoubtful(std::wstring_view typedText, std::wstring_view correctionText) {
    Shape const typed(typedText);
    Shape const correction(correctionText);
    return hasOddPower(correction) || mayConvert(typed) || hasOddFeet(typed, correction) ||
           reachesTooFar(typed, correction) || hasOddAngle(correction) ||
           isOddSum(typed, correction) || isOddNotation(typed, correction) ||
           hasPowerOfTime(typed, correction) || hasArticle(typed) || hasSunkenPower(typed);
}

} // namespace Vn::Expressions
