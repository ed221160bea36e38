#include <algorithm>
#include <string>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/RevisionInternal.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Expressions {

namespace {

bool isOperator(Piece const & piece) {
    return piece.kind == EPiece::Sign && piece.text.size() == 1 &&
           std::wstring_view(L"+-*/%^").find(piece.text.front()) != std::wstring_view::npos;
}

bool isFractionText(std::wstring_view text) { return text.find(L'/') != text.npos; }

class Numbers {
public:
    explicit Numbers(Pieces & pieces) : m_pieces(pieces) {}

    void run() {
        dropSigns();
        dropAnd();
        for (std::size_t i = 0; i < m_pieces.size(); ++i) {
            moneyInFront(i);
            if (m_pieces[i].kind != EPiece::Number || m_pieces[i].raised) continue;
            powerOfTen(i);
            mixedNumber(i);
            reciprocal(i);
            if (!degrees(i) && !feet(i)) inches(i);
            percent(i);
            times(i);
        }
    }

private:
    Piece const * at(std::size_t i) const { return i < m_pieces.size() ? &m_pieces[i] : nullptr; }
    bool isSign(std::size_t i, std::wstring_view sign) const {
        return at(i) && at(i)->isSign(sign);
    }
    bool isNumber(std::size_t i) const {
        return at(i) && at(i)->kind == EPiece::Number && !at(i)->raised;
    }
    bool isInteger(std::size_t i) const { return isNumber(i) && areDigits(at(i)->text); }
    bool isWord(std::size_t i, std::initializer_list<wchar_t const *> words) const {
        if (!at(i) || at(i)->kind != EPiece::Word) return false;
        return std::any_of(words.begin(), words.end(), [&](wchar_t const * word) {
            return Text::foldedEqual(at(i)->text, word);
        });
    }

    void erase(std::size_t begin, std::size_t end) {
        m_pieces.erase(m_pieces.begin() + static_cast<std::ptrdiff_t>(begin),
                       m_pieces.begin() + static_cast<std::ptrdiff_t>(end));
    }

    // Writes one piece instead of those up to `end`.
    void quantity(std::size_t begin, std::size_t end, std::wstring text, bool sum = false) {
        Piece & piece = m_pieces[begin];
        piece.kind = EPiece::Whole;
        piece.text = std::move(text);
        piece.quantity = true;
        piece.sum = sum;
        erase(begin + 1, end);
    }

    // "+5 cm" and "= 5 cm".
    void dropSigns() {
        if (!m_pieces.empty() && m_pieces.back().isSign(L"=")) m_pieces.pop_back();
        Pieces kept;
        for (Piece & piece : m_pieces) {
            bool const isFirst = kept.empty() || kept.back().isSign(L"(") ||
                                 kept.back().isSign(L";") || isOperator(kept.back());
            if (kept.empty() && piece.isSign(L"=")) continue;
            if (isFirst && piece.isSign(L"+")) continue;
            kept.push_back(std::move(piece));
        }
        m_pieces = std::move(kept);
    }

    // "5 ft and 6 in", "5 ft, 6 in": what joins the two quantities goes.
    void dropAnd() {
        if (std::any_of(m_pieces.begin(), m_pieces.end(),
                        [](Piece const & piece) { return piece.isSign(L"("); }))
            return; // a comma may separate arguments
        for (std::size_t i = 1; i + 2 < m_pieces.size(); ++i) {
            bool const joins = isWord(i, {L"and"}) || isSign(i, L",");
            if (joins && at(i - 1)->kind == EPiece::Word && isNumber(i + 1) &&
                at(i + 2)->kind == EPiece::Word) {
                erase(i, i + 1);
                m_pieces[i].blankBefore = true;
            }
        }
    }

    // "$20".
    void moneyInFront(std::size_t i) {
        constexpr std::wstring_view c_money = L"$\u20AC\u00A3\u00A5\u00A2";
        if (m_pieces[i].kind != EPiece::Word || !isNumber(i + 1)) return;
        if (i > 0 && (m_pieces[i - 1].kind == EPiece::Number || isSign(i - 1, L")"))) return;
        bool const isMoney =
            m_pieces[i].text.size() == 1 && c_money.find(m_pieces[i].text.front()) != c_money.npos;
        if (!isMoney && m_pieces[i].text != L"US$") return;
        std::swap(m_pieces[i].text, m_pieces[i + 1].text);
        std::swap(m_pieces[i].kind, m_pieces[i + 1].kind);
        m_pieces[i + 1].blankBefore = true;
    }

    // The end of the exponent of a power of ten at `i`, which goes into `exponent`; `i` if there is
    // none.
    std::size_t exponentOfTen(std::size_t i, std::wstring & exponent) const {
        if (!isNumber(i) || at(i)->text != L"10") return i;
        if (at(i + 1) && at(i + 1)->kind == EPiece::Number && at(i + 1)->raised) {
            exponent = at(i + 1)->text;
            return i + 2;
        }
        if (!isSign(i + 1, L"^")) return i;
        std::size_t digits = i + 2;
        exponent.clear();
        if (isSign(digits, L"-") || isSign(digits, L"+")) exponent = at(digits++)->text;
        if (!isInteger(digits)) return i;
        exponent += at(digits)->text;
        return digits + 1;
    }

    // "5 x 10^3 mm", where the exponent would take the units.
    void powerOfTen(std::size_t i) {
        bool const isDivisor =
            i > 0 && (isSign(i - 1, L"/") || isSign(i - 1, L"%") || isSign(i - 1, L"^"));
        if (isDivisor) return;
        std::wstring exponent;
        if (std::size_t const end = exponentOfTen(i, exponent); end > i) {
            if (!at(end) || at(end)->kind != EPiece::Word) return;
            m_pieces[i].text = L"1E" + exponent;
            erase(i + 1, end);
            return;
        }
        if (m_pieces[i].text.find_first_of(L"eE/") != std::wstring::npos) return;
        if (!isSign(i + 1, L"*") && !isWord(i + 1, {L"x"})) return;
        std::size_t const end = exponentOfTen(i + 2, exponent);
        if (end == i + 2) return;
        m_pieces[i].text += L'E' + exponent;
        erase(i + 1, end);
    }

    // "1-1/2 in" and "2 1/3".
    void mixedNumber(std::size_t i) {
        if (!isInteger(i)) return;
        // After an operator the number may be its operand alone: 2*6-1/2".
        bool const isOperand =
            i > 0 && (isSign(i - 1, L"*") || isSign(i - 1, L"/") || isSign(i - 1, L"^"));
        bool const isTight = !isOperand && isSign(i + 1, L"-") && isNumber(i + 2) &&
                             !at(i + 1)->blankBefore && !at(i + 2)->blankBefore &&
                             isFractionText(at(i + 2)->text) &&
                             at(i + 2)->text.find(L' ') == std::wstring::npos;
        if (isTight && (isSign(i + 3, L"\"") || (at(i + 3) && at(i + 3)->kind == EPiece::Word))) {
            m_pieces[i].text += L' ' + at(i + 2)->text;
            erase(i + 1, i + 3);
            return;
        }
        if (!isInteger(i + 1) || !isSign(i + 2, L"/") || !isInteger(i + 3)) return;
        m_pieces.insert(m_pieces.begin() + static_cast<std::ptrdiff_t>(i) + 4,
                        {EPiece::Sign, L")"});
        m_pieces.insert(m_pieces.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                        {EPiece::Sign, L"+", true});
        m_pieces.insert(m_pieces.begin() + static_cast<std::ptrdiff_t>(i),
                        {EPiece::Sign, L"(", m_pieces[i].blankBefore});
        m_pieces[i + 1].blankBefore = false;
        m_pieces[i + 3].blankBefore = true;
    }

    // "50 1/s": so many per second.
    void reciprocal(std::size_t i) {
        bool const isOne = isNumber(i + 1) && at(i + 1)->text == L"1" && isSign(i + 2, L"/");
        if (!isOne || !at(i + 3) || at(i + 3)->kind != EPiece::Word) return;
        if (Tokens::get()->getFunctionToken(at(i + 3)->text) == e_NONE) {
            erase(i + 1, i + 2);
            m_pieces[i + 1].blankBefore = true;
            return;
        }
        // After "/" the word "min" is a function.
        bool const isLast = !at(i + 4) || isSign(i + 4, L")") || isSign(i + 4, L"+");
        if (!isLast) return;
        auto const place = m_pieces.begin() + static_cast<std::ptrdiff_t>(i);
        Piece word = m_pieces[i + 3];
        word.blankBefore = true;
        m_pieces.erase(place + 1, place + 4);
        m_pieces.insert(place + 1, {{EPiece::Sign, L"/", true},
                                    {EPiece::Sign, L"(", true},
                                    {EPiece::Number, L"1"},
                                    word,
                                    {EPiece::Sign, L")"}});
    }

    // Minutes with decimals as minutes and seconds: "30.5" as `30' 30"`.  Empty if the digits are
    // too many to be exact.
    static std::wstring minutesAndSeconds(std::wstring_view minutes) {
        std::size_t const separator = minutes.find_first_of(L".,");
        std::wstring_view const decimals = minutes.substr(separator + 1);
        constexpr std::size_t c_most = 9;
        if (decimals.empty() || decimals.size() > c_most || !areDigits(decimals)) return {};
        unsigned long long seconds = 0;
        unsigned long long one = 1;
        for (wchar_t const c : decimals) {
            seconds = seconds * 10 + static_cast<unsigned long long>(c - L'0');
            one *= 10;
        }
        seconds *= 60;
        std::wstring text = std::to_wstring(seconds / one);
        std::wstring rest = std::to_wstring(seconds % one);
        rest.insert(0, decimals.size() - std::min(decimals.size(), rest.size()), L'0');
        while (!rest.empty() && rest.back() == L'0') rest.pop_back();
        if (!rest.empty()) text += L'.' + rest;
        return std::wstring(minutes.substr(0, separator)) + L"' " + text + L'"';
    }

    // "45d 30.5'", "45d 30' 15"".
    bool degrees(std::size_t i) {
        bool const isMinutes =
            isSign(i + 3, L"'") || isWord(i + 3, {L"min", L"minute", L"minutes", L"arcmin"});
        if (!isInteger(i) || !isWord(i + 1, {L"\u00B0", L"deg", L"degree", L"degrees"}) ||
            !isNumber(i + 2) || !isMinutes)
            return false;
        std::wstring const & minutes = at(i + 2)->text;
        std::wstring text = m_pieces[i].text + L"\u00B0 ";
        bool const hasSeconds =
            isNumber(i + 4) && (isSign(i + 5, L"\"") ||
                                isWord(i + 5, {L"s", L"sec", L"second", L"seconds", L"arcsec"}));
        if (areDigits(minutes)) {
            text += minutes + L'\'';
            if (hasSeconds) text += L' ' + at(i + 4)->text + L'"';
        } else {
            std::wstring const written = minutesAndSeconds(minutes);
            if (hasSeconds || written.empty()) return false;
            text += written;
        }
        quantity(i, hasSeconds ? i + 6 : i + 4, std::move(text));
        return true;
    }

    // Whether a number can stand in front of a mark.
    static bool isWholeOrFraction(std::wstring_view text) {
        return areDigits(text) || isFractionText(text);
    }

    bool feet(std::size_t i) {
        if (!isSign(i + 1, L"'")) return false;
        std::wstring const feet = m_pieces[i].text;
        std::size_t second = i + 2;
        bool const isHyphen = isSign(second, L"-");
        if (isHyphen) ++second;
        bool const isMarked =
            isSign(second + 1, L"\"") || isWord(second + 1, {L"in", L"inch", L"inches"});
        bool const isFree = !at(second + 1) || at(second + 1)->kind == EPiece::Sign;
        bool const isTight =
            !isHyphen || (at(second) && !at(i + 2)->blankBefore && !at(second)->blankBefore);
        if (isNumber(second) && (isMarked || (isFree && isTight && !isSign(second + 1, L"'")))) {
            std::wstring const inches = at(second)->text;
            std::size_t const end = second + (isMarked ? 2 : 1);
            if (areDigits(feet) && isWholeOrFraction(inches))
                quantity(i, end, feet + L"' " + inches + L'"');
            else
                quantity(i, end, feet + L" ft + " + inches + L" in", true);
            return true;
        }
        quantity(i, i + 2, areDigits(feet) ? feet + L'\'' : feet + L" ft");
        return true;
    }

    void inches(std::size_t i) {
        if (!isSign(i + 1, L"\"")) return;
        std::wstring const inches = m_pieces[i].text;
        quantity(i, i + 2, isWholeOrFraction(inches) ? inches + L'"' : inches + L" in");
    }

    // "20%" where a number is wanted.
    void percent(std::size_t i) {
        if (!isNumber(i) || !(isSign(i + 1, L"%") || isSign(i + 1, L"\u2030"))) return;
        bool const isFirst = i == 0 || isSign(i - 1, L"(") || isSign(i - 1, L";");
        if (!isFirst && !isSign(i - 1, L"*") && !isSign(i - 1, L"/")) return;
        if (isWord(i + 2, {L"of"})) {
            m_pieces[i + 2] = {EPiece::Sign, L"*", true};
            if (at(i + 3)) m_pieces[i + 3].blankBefore = true;
        }
        bool const isLast = !at(i + 2) || isSign(i + 2, L")") || isSign(i + 2, L";");
        if (!isLast && !isSign(i + 2, L"*") && !isSign(i + 2, L"/")) return;
        std::wstring text = m_pieces[i].text + (at(i + 1)->text == L"%" ? L"/100" : L"/1000");
        if (!isFirst || !isLast) text = L'(' + text + L')';
        m_pieces[i].kind = EPiece::Whole;
        m_pieces[i].text = std::move(text);
        erase(i + 1, i + 2);
    }

    // "3 x 4", unless they are measures such as "3 x 4 in".
    void times(std::size_t i) {
        if (!isNumber(i) || !isWord(i + 1, {L"x"}) || !isNumber(i + 2)) return;
        bool const hasOther = std::any_of(m_pieces.begin(), m_pieces.end(), [](Piece const & p) {
            return p.kind != EPiece::Number && p.kind != EPiece::Sign &&
                   !(p.kind == EPiece::Word && Text::foldedEqual(p.text, L"x"));
        });
        bool const hasMark = std::any_of(m_pieces.begin(), m_pieces.end(), [](Piece const & p) {
            return p.isSign(L"'") || p.isSign(L"\"");
        });
        if (hasOther || hasMark) return;
        m_pieces[i + 1] = {EPiece::Sign, L"*", true};
        m_pieces[i + 2].blankBefore = true;
    }

    Pieces & m_pieces;
};

} // namespace

void reviseNumbers(Pieces & pieces) { Numbers(pieces).run(); }

} // namespace Vn::Expressions
