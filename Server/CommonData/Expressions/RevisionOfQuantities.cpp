#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"
#include "Server/CommonData/Expressions/RevisionInternal.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Expressions {

namespace {

// A quantity and what it is worth, to tell whether a second belongs to it.
struct Worth {
    double value;
    Units::ComplexUnit units;
};

std::optional<Worth> worthOf(std::wstring const & text) {
    Expression const expression(text);
    std::optional<double> const value = expression.value();
    std::optional<Units::ComplexUnit> const units = expression.units();
    if (!value || !units) return {};
    return Worth{*value, *units};
}

class Quantities {
public:
    Quantities(Pieces & pieces, RevisionNotes & notes) : m_pieces(pieces), m_notes(notes) {}

    bool run() {
        bool good = true;
        for (std::size_t i = 0; i < m_pieces.size(); ++i)
            if (m_pieces[i].kind == EPiece::Word && !isBareFunction(i)) {
                good &= units(i);
                if (m_bTooLong) return false;
            }
        if (!good) return false;
        if (!m_notes.unknownFunctions.empty()) return false;
        for (std::size_t i = m_pieces.size(); i-- > 0;)
            if (!power(i)) return false;
        for (std::size_t i = 0; i + 1 < m_pieces.size(); ++i) smallerUnit(i);
        for (std::size_t i = 0; i < m_pieces.size(); ++i) sum(i);
        for (std::size_t i = 0; i < m_pieces.size(); ++i)
            if (m_pieces[i].sum) wrap(i);
        for (std::size_t i = m_pieces.size(); i-- > 0;)
            if (isBareFunction(i) && !brackets(i)) return false;
        for (std::size_t i = 1; i < m_pieces.size(); ++i)
            if (!product(i)) return false;
        return true;
    }

private:
    Piece const * at(std::size_t i) const { return i < m_pieces.size() ? &m_pieces[i] : nullptr; }
    bool isSign(std::size_t i, std::wstring_view sign) const {
        return at(i) && at(i)->isSign(sign);
    }
    bool isOneOf(std::size_t i, std::wstring_view signs) const {
        return at(i) && at(i)->kind == EPiece::Sign && at(i)->text.size() == 1 &&
               signs.find(at(i)->text.front()) != signs.npos;
    }
    bool isPrecededBy(std::size_t i, std::wstring_view signs) const {
        return i > 0 && isOneOf(i - 1, signs);
    }
    void erase(std::size_t begin, std::size_t end) {
        m_pieces.erase(m_pieces.begin() + static_cast<std::ptrdiff_t>(begin),
                       m_pieces.begin() + static_cast<std::ptrdiff_t>(end));
    }
    void insert(std::size_t i, Piece piece) {
        m_pieces.insert(m_pieces.begin() + static_cast<std::ptrdiff_t>(i), std::move(piece));
    }

    // "sin" of "sin 30"; "min" after a number is a minute.
    bool isBareFunction(std::size_t i) const {
        if (m_pieces[i].kind != EPiece::Word || isSign(i + 1, L"(")) return false;
        if (Tokens::get()->getFunctionToken(m_pieces[i].text) == e_NONE) return false;
        return !isUnitWord(m_pieces[i].text);
    }

    // "sin 30".  False where more may belong to the argument.
    bool brackets(std::size_t i) {
        Piece const * const argument = at(i + 1);
        if (!argument || (argument->kind != EPiece::Number && argument->kind != EPiece::Whole) ||
            isOneOf(i + 2, L"*/%^("))
            return false;
        m_pieces[i].kind = EPiece::Whole;
        m_pieces[i + 1].blankBefore = false;
        insert(i + 2, {EPiece::Sign, L")"});
        insert(i + 1, {EPiece::Sign, L"("});
        return true;
    }

    // Units and the number in front of them become one piece.
    bool units(std::size_t i) {
        UnitGroup const group = readUnits(m_pieces, i, m_notes);
        m_bTooLong = group.tooLong;
        if (!group.good) return false;
        bool const hasNumber =
            i > 0 && m_pieces[i - 1].kind == EPiece::Number && !m_pieces[i - 1].raised;
        bool const isPlain = group.factor.empty() && group.divisor.empty();
        std::size_t const begin = hasNumber ? i - 1 : i;
        std::wstring text;
        if (hasNumber) {
            text = m_pieces[begin].text;
            if (!group.factor.empty()) text += L" *";
            if (group.changed || m_pieces[i].blankBefore) text += L' ';
        }
        if (!group.factor.empty()) text += group.factor + L' ';
        text += group.text;
        if (!group.divisor.empty()) text += L" / (" + group.divisor + L')';
        bool const isTight = !isPlain && (isPrecededBy(begin, L"/%^") || isSign(group.end, L"^"));
        Piece & piece = m_pieces[begin];
        if (!hasNumber && isPlain) {
            piece.kind = EPiece::Unit;
            piece.blankBefore |=
                group.changed && begin > 0 && m_pieces[begin - 1].kind != EPiece::Sign;
        } else {
            piece.kind = EPiece::Whole;
            piece.quantity = true;
        }
        piece.text = isTight ? L'(' + text + L')' : text;
        erase(begin + 1, group.end);
        return true;
    }

    // Where the operand that ends at `i` begins.
    std::size_t beginOfOperand(std::size_t i) const {
        if (!isSign(i, L")")) return i;
        int depth = 0;
        for (std::size_t k = i + 1; k-- > 0;) {
            if (isSign(k, L")")) ++depth;
            if (isSign(k, L"(") && --depth == 0)
                return k > 0 && m_pieces[k - 1].kind == EPiece::Whole && !m_pieces[k - 1].quantity
                           ? k - 1
                           : k;
        }
        return i;
    }

    // Where the operand that begins at `i` ends.
    std::size_t endOfOperand(std::size_t i) const {
        if (isSign(i, L"-")) ++i;
        if (at(i) && at(i)->kind == EPiece::Whole && isSign(i + 1, L"(")) ++i;
        if (!isSign(i, L"(")) return i + 1;
        int depth = 0;
        for (std::size_t k = i; k < m_pieces.size(); ++k) {
            if (isSign(k, L"(")) ++depth;
            if (isSign(k, L")") && --depth == 0) return k + 1;
        }
        return m_pieces.size();
    }

    // A superscript or "**", which binds tighter than "^".
    bool power(std::size_t i) {
        if (!m_pieces[i].raised) return true;
        if (i == 0) return false;
        std::size_t end = i + 1;
        if (m_pieces[i].kind == EPiece::Number) {
            if (m_pieces[i].text == L"-" || m_pieces[i].text == L"+") return false;
            m_pieces[i].raised = false;
            insert(i, {EPiece::Sign, L"^"});
            end = i + 2;
        } else {
            m_pieces[i].raised = false;
            end = endOfOperand(i + 1);
            if (end > m_pieces.size()) return false; // nothing follows
        }
        std::size_t const base = beginOfOperand(i - 1);
        Piece const & operand = m_pieces[i - 1];
        bool const isOperand = operand.kind == EPiece::Number || operand.isSign(L")") ||
                               (operand.kind == EPiece::Whole && !operand.quantity);
        if (!isOperand) return false;
        if (!isPrecededBy(base, L"*/%^-") && !isSign(end, L"^")) return true;
        insert(end, {EPiece::Sign, L")"});
        insert(base, {EPiece::Sign, L"(", m_pieces[base].blankBefore});
        m_pieces[base + 1].blankBefore = false;
        return true;
    }

    // "5 ft 6", "2h30": a number that ends a quantity counts the unit that is next below.
    void smallerUnit(std::size_t i) {
        struct Step {
            wchar_t const * unit;
            wchar_t const * next;
            double count;
        };
        static constexpr Step c_steps[] = {
            {L"1 ft", L"in", 12}, {L"1 hr", L"min", 60}, {L"1 min", L"s", 60}};
        bool const isLast = !at(i + 2) || isSign(i + 2, L")");
        bool const isFirst = i == 0 || isSign(i - 1, L"(");
        if (!isFirst || !isLast || !m_pieces[i].quantity ||
            m_pieces[i + 1].kind != EPiece::Number || m_pieces[i + 1].raised)
            return;
        std::size_t const letters = m_pieces[i].text.find_first_not_of(L"0123456789 ");
        if (letters == std::wstring::npos || letters == 0)
            return; // only whole numbers are followed
        std::optional<Worth> const unit = worthOf(L"1 " + m_pieces[i].text.substr(letters));
        std::optional<Worth> const count = worthOf(m_pieces[i + 1].text);
        for (Step const & step : c_steps) {
            std::optional<Worth> const one = worthOf(step.unit);
            if (!unit || !count || !one || unit->value != one->value ||
                count->value >= step.count || !unit->units.isDimensionallyEquivalent(&one->units))
                continue;
            m_pieces[i + 1].kind = EPiece::Whole;
            m_pieces[i + 1].quantity = true;
            m_pieces[i + 1].text += L' ' + std::wstring(step.next);
            return;
        }
    }

    // "5 ft 6 in": a smaller quantity of the same kind right after another.
    void sum(std::size_t i) {
        while (m_pieces[i].quantity && at(i + 1) && at(i + 1)->quantity && !at(i + 1)->sum) {
            std::wstring const & first = m_pieces[i].text;
            std::wstring const & second = at(i + 1)->text;
            std::size_t const last = m_pieces[i].sum ? first.rfind(L'+') + 1 : 0;
            std::optional<Worth> const a = worthOf(first.substr(last));
            std::optional<Worth> const b = worthOf(second);
            if (!a || !b || !a->units.isDimensionallyEquivalent(&b->units) ||
                std::fabs(a->value) <= std::fabs(b->value))
                return;
            m_pieces[i].text = first + L" + " + second;
            m_pieces[i].sum = true;
            erase(i + 1, i + 2);
        }
    }

    // Brackets round a sum that something else belongs to.
    void wrap(std::size_t i) {
        bool const isFreeBefore = i == 0 || isPrecededBy(i, L"(;+");
        bool const isFreeAfter = !at(i + 1) || isOneOf(i + 1, L");+-");
        if (!isFreeBefore || !isFreeAfter) m_pieces[i].text = L'(' + m_pieces[i].text + L')';
    }

    bool isOperandEnd(std::size_t i) const {
        EPiece const kind = m_pieces[i].kind;
        return kind == EPiece::Number || kind == EPiece::Whole || isSign(i, L")");
    }

    bool isFunction(std::size_t i) const {
        return m_pieces[i].kind == EPiece::Whole && isSign(i + 1, L"(") &&
               Tokens::get()->getFunctionToken(m_pieces[i].text) != e_NONE;
    }
    bool isConstant(std::size_t i) const {
        return m_pieces[i].kind == EPiece::Whole &&
               Tokens::get()->getConstantToken(m_pieces[i].text) != e_NONE;
    }

    // Whether a product that ends at `i` has an operator in it that wouldn't take the product as
    // one operand: "1/2(3)" may be meant in two ways.
    bool isAmbiguous(std::size_t i) const {
        int depth = 0;
        for (std::size_t k = i + 1; k-- > 0;) {
            if (isSign(k, L")")) ++depth;
            if (isSign(k, L"(") && --depth < 0) return false;
            if (depth > 0) continue;
            if (isOneOf(k, L"/%^")) return true;
            if (isOneOf(k, L"+-;")) return false;
            if (m_pieces[k].kind == EPiece::Number &&
                m_pieces[k].text.find(L'/') != std::wstring::npos)
                return true;
        }
        return false;
    }

    // "(2+3) cm", "2 PI", "2(3)": a product without a sign.  False if nobody can tell what it is.
    bool product(std::size_t i) {
        if (isFunction(i - 1) || !isOperandEnd(i - 1)) return true;
        if (m_pieces[i].kind == EPiece::Unit) {
            if (isConstant(i - 1)) return true;
            if (!isSign(i - 1, L")")) return false;
            std::size_t const begin = beginOfOperand(i - 1);
            bool const isTight = isPrecededBy(begin, L"/%^") || isSign(i + 1, L"^");
            m_pieces[i].text = L"1 " + m_pieces[i].text;
            m_pieces[i].kind = EPiece::Whole;
            m_pieces[i].quantity = true;
            m_pieces[i].blankBefore = true;
            if (isTight) {
                insert(i + 1, {EPiece::Sign, L")"});
                insert(i, {EPiece::Sign, L"*", true});
                insert(begin, {EPiece::Sign, L"(", m_pieces[begin].blankBefore});
                m_pieces[begin + 1].blankBefore = false;
            } else {
                insert(i, {EPiece::Sign, L"*", true});
            }
            return true;
        }
        bool const isBracket = isSign(i, L"(");
        bool const isFactor = isSign(i - 1, L")") && m_pieces[i].quantity;
        if (!isBracket && !isFunction(i) && !isConstant(i) && !isFactor) return true;
        if (isBracket && at(i + 1) && at(i + 1)->kind == EPiece::Unit) return true;
        if (isConstant(i) && m_pieces[i].text == Tokens::get()->getString(e_E_CONSTANT))
            return false;
        if (isAmbiguous(i - 1)) return false;
        bool const isTight = !m_pieces[i].blankBefore;
        insert(i, {EPiece::Sign, L"*", !isTight});
        return true;
    }

    Pieces & m_pieces;
    RevisionNotes & m_notes;
    bool m_bTooLong = false; // the units that were read last
};

} // namespace

bool reviseQuantities(Pieces & pieces, RevisionNotes & notes) {
    return Quantities(pieces, notes).run();
}

std::wstring revised(Pieces pieces, RevisionNotes & notes) {
    for (Piece & piece : pieces) {
        if (piece.decimal.empty()) continue;
        bool const isGroup = piece.decimal.find(notes.decimalMark) == piece.decimal.npos;
        notes.hasGroups |= isGroup;
        if (!isGroup || notes.areDecimals) piece.text = piece.decimal;
    }
    reviseNumbers(pieces);
    reviseNames(pieces, notes);
    if (!reviseQuantities(pieces, notes)) return {};
    return putTogether(pieces);
}

} // namespace Vn::Expressions
