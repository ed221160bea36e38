#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/UnitGroupInternal.h"

namespace Vn::Expressions {

namespace {

constexpr int c_greatestExponent = 99;
constexpr std::size_t c_mostTerms = 16;

// A word of the group, with its power.
struct Term {
    std::wstring word;
    int exponent = 1;
    bool below = false;   // the line
    wchar_t joint = L' '; // what stands in front of it: a blank, "*", "/" or "-"
    bool odd = false;     // written otherwise than the language does
};

struct Factor {
    std::wstring unit;
    int exponent; // negative below the line
};

// "ft^3/min" of a row, or one unit.
std::vector<Factor> factorsOf(std::wstring_view text, int exponent) {
    std::vector<Factor> factors;
    int sign = 1;
    while (!text.empty()) {
        std::size_t const end = std::min(text.find_first_of(L" /"), text.size());
        std::wstring_view unit = text.substr(0, end);
        int power = 1;
        if (std::size_t const caret = unit.find(L'^'); caret != unit.npos) {
            power = unit[caret + 1] - L'0';
            unit = unit.substr(0, caret);
        }
        factors.push_back({std::wstring(unit), sign * power * exponent});
        if (end < text.size() && text[end] == L'/') sign = -1;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return factors;
}

// 2 for "sq", 3 for "cubic", else 0.
int powerWord(std::wstring_view word) {
    for (wchar_t const * const square : {L"sq", L"square"})
        if (Text::foldedEqual(word, square)) return 2;
    for (wchar_t const * const cube : {L"cu", L"cubic"})
        if (Text::foldedEqual(word, cube)) return 3;
    return 0;
}

int powerWordAfter(std::wstring_view word) {
    return Text::foldedEqual(word, L"squared") ? 2 : Text::foldedEqual(word, L"cubed") ? 3 : 0;
}

class Group {
public:
    Group(Pieces const & pieces, std::size_t begin, RevisionNotes & notes)
        : m_pieces(pieces), m_begin(begin), m_at(begin), m_notes(notes) {}

    UnitGroup run() {
        UnitGroup group;
        group.end = m_begin;
        if (!readTerms()) {
            group.tooLong = m_terms.size() > c_mostTerms;
            return group;
        }
        group.end = m_at;
        group.good = resolve(group);
        if (!group.good) return group;
        if (!m_bChanged) {
            group.text = putTogether({m_pieces.begin() + static_cast<std::ptrdiff_t>(m_begin),
                                      m_pieces.begin() + static_cast<std::ptrdiff_t>(m_at)});
            return group;
        }
        group.changed = true;
        write(group);
        return group;
    }

private:
    Piece const * piece(std::size_t ahead = 0) const {
        return m_at + ahead < m_pieces.size() ? &m_pieces[m_at + ahead] : nullptr;
    }
    bool isSign(std::size_t ahead, std::wstring_view sign) const {
        return piece(ahead) && piece(ahead)->isSign(sign);
    }

    // Whether a word may belong to units at all.
    bool isWordOfUnits(std::size_t ahead) const {
        Piece const * const p = piece(ahead);
        if (!p || p->kind != EPiece::Word) return false;
        if (isUnitWord(p->text)) return true;
        if (Tokens::get()->getConstantToken(p->text) != e_NONE) return false;
        Respelling respelling;
        if (findRespelling(p->text, respelling))
            return respelling.kind != ERespelling::Constant &&
                   respelling.kind != ERespelling::Function;
        return !isSign(ahead + 1, L"(") || Tokens::get()->getFunctionToken(p->text) == e_NONE;
    }

    // The exponent that stands next; 1 if none does.
    int exponent(bool & odd) {
        std::size_t ahead = 0;
        bool const isRaised = piece() && piece()->kind == EPiece::Number && piece()->raised;
        if (!isRaised) {
            if (!isSign(0, L"^")) return 1;
            odd |= piece()->raised; // "**"
            ++ahead;
        }
        bool negative = false;
        if (isSign(ahead, L"-")) {
            negative = true;
            ++ahead;
        }
        Piece const * const p = piece(ahead);
        if (!p || p->kind != EPiece::Number) return 0;
        std::wstring_view digits = p->text;
        if (isRaised && !digits.empty() && (digits.front() == L'-' || digits.front() == L'+')) {
            negative = digits.front() == L'-';
            digits.remove_prefix(1);
        }
        if (!areDigits(digits) || digits.size() > 2) return 0;
        int value = 0;
        for (wchar_t const c : digits) value = value * 10 + (c - L'0');
        if (value == 0) return 0;
        odd |= negative || isRaised;
        m_at += ahead + 1;
        return negative ? -value : value;
    }

    // "m2K": a unit, a power and another unit.
    bool readTwo(std::wstring_view word, wchar_t joint, bool below) {
        std::size_t const digit = word.find_first_of(L"23");
        if (digit == 0 || digit == word.npos) return false;
        std::wstring_view const first = word.substr(0, digit);
        std::wstring_view const second = word.substr(digit + 1);
        if (!isUnitWord(first) || !isUnitWord(second)) return false;
        m_terms.push_back({std::wstring(first), word[digit] - L'0', below, joint, true});
        m_terms.push_back({std::wstring(second), 1, below, L' ', true});
        return true;
    }

    bool readTerm(wchar_t joint, bool below) {
        Term term;
        term.joint = joint;
        term.below = below;
        int power = powerWord(piece()->text);
        if (power != 0 && piece(1) && piece(1)->kind == EPiece::Word) {
            term.odd = true;
            ++m_at;
        } else {
            power = 1;
        }
        term.word = piece()->text;
        ++m_at;
        Respelling respelling;
        if (!isUnitWord(term.word) && !findRespelling(term.word, respelling)) {
            if (power == 1 && readTwo(term.word, joint, below)) return true;
            // "mm2".
            std::size_t digits = term.word.size();
            while (digits > 0 && Text::isDigit(static_cast<char32_t>(term.word[digits - 1])))
                --digits;
            if (digits + 1 == term.word.size() && digits > 0 && term.word[digits] != L'0') {
                power *= term.word[digits] - L'0';
                term.word.resize(digits);
                term.odd = true;
            }
        }
        int after = exponent(term.odd);
        if (after == 0) return false;
        if (piece() && piece()->kind == EPiece::Word && powerWordAfter(piece()->text) != 0) {
            after *= powerWordAfter(piece()->text);
            term.odd = true;
            ++m_at;
        }
        if (std::abs(after) > c_greatestExponent) return false;
        term.exponent = power * after;
        m_terms.push_back(std::move(term));
        return true;
    }

    // "(m^2 K)" after "/".
    bool readBrackets() {
        std::size_t const start = m_at;
        std::size_t const terms = m_terms.size();
        m_at += 2;
        wchar_t joint = L'/';
        while (isWordOfUnits(0)) {
            if (!readTerm(joint, true)) break;
            joint = L' ';
            if (isSign(0, L"*")) {
                if (piece()->dot) m_terms.back().odd = true;
                ++m_at;
            }
        }
        if (m_terms.size() > terms && isSign(0, L")")) {
            ++m_at;
            return true;
        }
        m_terms.resize(terms);
        m_at = start;
        return false;
    }

    bool readTerms() {
        if (!isWordOfUnits(0) || !readTerm(L' ', false)) return false;
        bool below = false;
        for (;;) {
            if (m_terms.size() > c_mostTerms) return false;
            if (isWordOfUnits(0) && !Text::foldedEqual(piece()->text, L"per")) {
                if (!readTerm(L' ', below)) return false;
            } else if (isSign(0, L"*") && isWordOfUnits(1)) {
                bool const isDot = piece()->dot;
                if (!isDot) below = false;
                ++m_at;
                if (!readTerm(isDot ? L' ' : L'*', below)) return false;
                m_terms.back().odd |= isDot;
            } else if ((isSign(0, L"/") || isPer()) && isWordOfUnits(1)) {
                bool const odd = isPer();
                below = true;
                ++m_at;
                if (!readTerm(L'/', below)) return false;
                m_terms.back().odd |= odd;
            } else if (isSign(0, L"/") && isSign(1, L"(") && isWordOfUnits(2)) {
                below = true;
                if (!readBrackets()) return true;
            } else if (isHyphen()) {
                ++m_at;
                if (!readTerm(L'-', below)) return false;
            } else {
                return true;
            }
        }
    }

    bool isPer() const {
        return piece() && piece()->kind == EPiece::Word && Text::foldedEqual(piece()->text, L"per");
    }

    // Whether two words are units that nobody would subtract.
    static bool areOfTwoKinds(std::wstring const & first, std::wstring const & second) {
        auto const isUnit = [](std::wstring const & word, std::wstring & unit) {
            Respelling respelling;
            unit = word;
            if (isUnitWord(word)) return true;
            if (!findRespelling(word, respelling) || respelling.wanted.empty()) return false;
            unit = respelling.wanted.front();
            return respelling.kind == ERespelling::Unit || respelling.kind == ERespelling::Metric;
        };
        std::wstring a;
        std::wstring b;
        if (!isUnit(first, a) || !isUnit(second, b)) return false;
        std::optional<Units::ComplexUnit> const x = Expression(L"1 " + a).units();
        std::optional<Units::ComplexUnit> const y = Expression(L"1 " + b).units();
        return x && y && !x->isDimensionallyEquivalent(&*y);
    }

    // "ft-lb", where a row knows it, or where a difference would make no sense: "acre-ft".
    bool isHyphen() const {
        if (!isSign(0, L"-") || piece()->blankBefore || !isWordOfUnits(1) ||
            piece(1)->blankBefore || m_terms.back().exponent != 1)
            return false;
        constexpr std::size_t c_shortestName = 4;
        std::wstring const & first = m_terms.back().word;
        std::wstring const & second = piece(1)->text;
        Respelling respelling;
        if (findRespelling(first + L'-' + second, respelling)) return true;
        bool const isAlone = !piece(2) || (!piece(2)->raised && !isSign(2, L"^"));
        if (isAlone && areOfTwoKinds(first, second)) return true;
        return first.size() >= c_shortestName && second.size() >= c_shortestName;
    }

    std::wstring keyOf(std::size_t i) const {
        std::wstring key = m_terms[i].word;
        if (m_terms[i].exponent > 1) key += L'^' + std::to_wstring(m_terms[i].exponent);
        return key;
    }

    // A row for this term and the next.
    bool findPair(std::size_t i, Respelling & respelling) const {
        if (i + 1 >= m_terms.size() || m_terms[i].exponent != 1 || m_terms[i + 1].exponent < 1)
            return false;
        wchar_t const joint = m_terms[i + 1].joint;
        if (joint == L'/' && m_terms[i].below) return false;
        std::wstring const key = m_terms[i].word + (joint == L'*' ? L' ' : joint) + keyOf(i + 1);
        return findRespelling(key, respelling);
    }

    bool take(Respelling const & respelling, Term const & term, std::wstring const & typed) {
        if (respelling.kind == ERespelling::Missing) {
            m_notes.missing = typed;
            m_notes.nearest = respelling.wanted.empty() ? L"" : respelling.wanted.front();
            return false;
        }
        if (respelling.kind == ERespelling::Function || respelling.kind == ERespelling::Constant)
            return false;
        if (respelling.wanted.size() > 1) m_notes.hasAlternatives = true;
        std::wstring const & wanted =
            respelling.wanted[std::min(m_notes.alternative, respelling.wanted.size() - 1)];
        m_bChanged = true;
        bool const below = term.below != (term.exponent < 0);
        std::vector<Factor> factors = factorsOf(wanted, 1);
        // "kgm^2" is "kg m^2".
        bool const isQuotient = factors.back().exponent < 0;
        if (factors.size() > 1 && isQuotient && std::abs(term.exponent) != 1) return false;
        bool const isNegative = term.exponent < 0;
        factors.back().exponent *= std::abs(term.exponent);
        for (Factor & factor : factors)
            if (term.below != isNegative) factor.exponent = -factor.exponent;
        if (respelling.factor.empty()) {
            m_factors.insert(m_factors.end(), factors.begin(), factors.end());
            return true;
        }
        m_notes.scaled = typed;
        if (std::abs(term.exponent) != 1) return false;
        std::wstring & number = below ? m_divisor : m_factor;
        if (!number.empty()) return false;
        number = respelling.factor;
        std::vector<Factor> & where = below ? m_divided : m_factors;
        where.insert(where.end(), factors.begin(), factors.end());
        return true;
    }

    bool resolve(UnitGroup & group) {
        bool good = true;
        for (std::size_t i = 0; i < m_terms.size(); ++i) {
            Term const & term = m_terms[i];
            Respelling respelling;
            m_bChanged |= term.odd;
            if (findPair(i, respelling)) {
                if (!take(respelling, term,
                          term.word + (m_terms[i + 1].joint) + m_terms[i + 1].word))
                    return false;
                ++i;
                continue;
            }
            m_bChanged |= term.joint == L'-';
            // "Nm^3" isn't "Nm" with a power.
            if (term.exponent > 1 && findRespelling(keyOf(i), respelling) &&
                respelling.kind == ERespelling::Missing)
                return take(respelling, term, keyOf(i));
            bool const isOdd = isOddWord(term.word) && findRespelling(term.word, respelling) &&
                               !respelling.wanted.empty();
            if (isUnitWord(term.word) && !isOdd) {
                m_factors.push_back({term.word, term.below ? -term.exponent : term.exponent});
                continue;
            }
            if (findRespelling(term.word, respelling)) {
                if (!take(respelling, term, term.word)) return false;
                continue;
            }
            auto const guess = m_notes.guesses.find(term.word);
            if (guess == m_notes.guesses.end()) {
                m_notes.unknown.push_back(term.word);
                good = false;
                continue;
            }
            m_bChanged = true;
            m_factors.push_back({guess->second, term.below ? -term.exponent : term.exponent});
        }
        group.factor = m_factor;
        return good;
    }

    static std::wstring line(std::vector<Factor> const & factors, bool above, std::size_t & count) {
        std::wstring text;
        count = 0;
        for (Factor const & factor : factors) {
            if ((factor.exponent > 0) != above) continue;
            if (count++ > 0) text += L' ';
            text += factor.unit;
            if (std::abs(factor.exponent) > 1)
                text += L'^' + std::to_wstring(std::abs(factor.exponent));
        }
        return text;
    }

    void write(UnitGroup & group) const {
        std::size_t count = 0;
        group.text = line(m_factors, true, count);
        std::wstring const below = line(m_factors, false, count);
        if (!below.empty())
            group.text +=
                (group.text.empty() ? L"/ " : L"/") + (count > 1 ? L'(' + below + L')' : below);
        if (!m_divided.empty()) group.divisor = m_divisor + L' ' + line(m_divided, false, count);
    }

    Pieces const & m_pieces;
    std::size_t const m_begin;
    std::size_t m_at;
    RevisionNotes & m_notes;
    std::vector<Term> m_terms;
    std::vector<Factor> m_factors;
    std::vector<Factor> m_divided;
    std::wstring m_factor;
    std::wstring m_divisor;
    bool m_bChanged = false;
};

} // namespace

UnitGroup readUnits(Pieces const & pieces, std::size_t begin, RevisionNotes & notes) {
    return Group(pieces, begin, notes).run();
}

} // namespace Vn::Expressions
