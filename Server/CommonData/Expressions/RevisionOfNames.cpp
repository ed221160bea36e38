#include <algorithm>
#include <optional>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"
#include "Server/CommonData/Expressions/RevisionInternal.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Expressions {

namespace {

class Names {
public:
    Names(Pieces & pieces, RevisionNotes & notes) : m_pieces(pieces), m_notes(notes) {}

    void run() {
        for (std::size_t i = 0; i < m_pieces.size(); ++i) {
            if (m_pieces[i].isSign(L"\u221A")) root(i);
            if (m_pieces[i].kind != EPiece::Word) continue;
            if (isSign(i + 1, L"("))
                function(i);
            else
                constant(i);
        }
        for (std::size_t i = m_pieces.size(); i-- > 0;)
            if (isPi(i) && isAngle(i)) insert(i + 1, {EPiece::Unit, L"rad", true});
        // The nearest closing bracket belongs to the last function.
        for (std::size_t i = m_pieces.size(); i-- > 0;)
            if (m_pieces[i].kind == EPiece::Whole && isSign(i + 1, L"(")) commas(i);
    }

private:
    bool isSign(std::size_t i, std::wstring_view sign) const {
        return i < m_pieces.size() && m_pieces[i].isSign(sign);
    }
    void erase(std::size_t begin, std::size_t end) {
        m_pieces.erase(m_pieces.begin() + static_cast<std::ptrdiff_t>(begin),
                       m_pieces.begin() + static_cast<std::ptrdiff_t>(end));
    }
    void insert(std::size_t i, Piece piece) {
        m_pieces.insert(m_pieces.begin() + static_cast<std::ptrdiff_t>(i), std::move(piece));
    }

    void root(std::size_t i) {
        Piece & piece = m_pieces[i];
        piece.kind = EPiece::Whole;
        piece.text = Tokens::get()->getString(e_SQRT);
        bool const isNumber = i + 1 < m_pieces.size() && (m_pieces[i + 1].kind == EPiece::Number ||
                                                          m_pieces[i + 1].kind == EPiece::Word);
        if (!isNumber) return;
        insert(i + 2, {EPiece::Sign, L")"});
        m_pieces[i + 1].blankBefore = false;
        insert(i + 1, {EPiece::Sign, L"("});
    }

    void name(std::size_t i, std::wstring text) {
        m_pieces[i].kind = EPiece::Whole;
        m_pieces[i].text = std::move(text);
    }

    void function(std::size_t i) {
        std::wstring const & word = m_pieces[i].text;
        Tokens const & tokens = *Tokens::get();
        if (tokens.getFunctionToken(word) != e_NONE) {
            m_pieces[i].kind = EPiece::Whole;
            return;
        }
        if (tokens.getConstantToken(word) != e_NONE && isSign(i + 2, L")")) {
            m_pieces[i].kind = EPiece::Whole;
            erase(i + 1, i + 3);
            return;
        }
        Respelling respelling;
        bool const isKnown = findRespelling(word, respelling);
        if (isKnown && respelling.kind == ERespelling::Constant && isSign(i + 2, L")")) {
            name(i, respelling.wanted.front());
            erase(i + 1, i + 3);
            return;
        }
        if (isKnown && respelling.kind == ERespelling::Function) {
            name(i, respelling.wanted.front());
            return;
        }
        if (isKnown || isUnitWord(word) || tokens.getConstantToken(word) != e_NONE) return;
        if (i > 0 && m_pieces[i - 1].kind == EPiece::Number) return; // a unit
        auto const guess = m_notes.guesses.find(word);
        if (guess == m_notes.guesses.end()) {
            m_notes.unknownFunctions.push_back(word);
            m_pieces[i].kind = EPiece::Whole;
        } else {
            name(i, guess->second);
        }
    }

    void constant(std::size_t i) {
        std::wstring const & word = m_pieces[i].text;
        if (Tokens::get()->getConstantToken(word) != e_NONE) {
            m_pieces[i].kind = EPiece::Whole;
            return;
        }
        Respelling respelling;
        if (isUnitWord(word) || !findRespelling(word, respelling)) return;
        bool const isBareFunction = respelling.kind == ERespelling::Function &&
                                    i + 1 < m_pieces.size() &&
                                    m_pieces[i + 1].kind == EPiece::Number;
        if (isBareFunction) m_pieces[i].text = respelling.wanted.front();
        if (respelling.kind != ERespelling::Constant) return;
        bool const isAfterNumber = i > 0 && m_pieces[i - 1].kind == EPiece::Number;
        if (isAfterNumber && word == L"e") return; // an exponent that isn't complete
        name(i, respelling.wanted.front());
    }

    bool isPi(std::size_t i) const {
        return m_pieces[i].kind == EPiece::Whole &&
               Tokens::get()->getConstantToken(m_pieces[i].text) == e_PI_CONSTANT;
    }

    // Whether the number at `i` is an angle that would be read in degrees: "sin(2 PI)".
    bool isAngle(std::size_t i) const {
        bool const hasUnit = i + 1 < m_pieces.size() && m_pieces[i + 1].kind == EPiece::Word;
        if (hasUnit) return false;
        int depth = 0;
        for (std::size_t k = i; k-- > 0;) {
            if (m_pieces[k].isSign(L")")) ++depth;
            if (!m_pieces[k].isSign(L"(") || --depth >= 0) continue;
            EToken const token = k > 0 && m_pieces[k - 1].kind == EPiece::Whole
                                     ? Tokens::get()->getFunctionToken(m_pieces[k - 1].text)
                                     : e_NONE;
            if (std::optional<FunctionId> const called = functionOfToken(token))
                return functionTakesAngle(*called);
            depth = 0; // brackets within an argument
        }
        return false;
    }

    static bool isCommaGroup(Piece const & piece) {
        return piece.decimal.find(L',') != std::wstring::npos;
    }

    // "max(2, 3)" and "max(2,3)", where a comma belongs to a number.
    void commas(std::size_t i) {
        EToken const token = Tokens::get()->getFunctionToken(m_pieces[i].text);
        std::optional<FunctionId> const called = functionOfToken(token);
        if (!called || functionArity(*called) != 2) return;
        std::vector<std::size_t> signs;
        std::vector<std::size_t> numbers;
        int depth = 0;
        for (std::size_t k = i + 1; k < m_pieces.size(); ++k) {
            if (m_pieces[k].isSign(L"(")) ++depth;
            if (m_pieces[k].isSign(L")") && --depth == 0) break;
            if (depth != 1) continue;
            if (m_pieces[k].isSign(L";")) return;
            if (m_pieces[k].isSign(L",")) signs.push_back(k);
            if (m_pieces[k].kind == EPiece::Number &&
                (m_pieces[k].text.find(L',') != std::wstring::npos || isCommaGroup(m_pieces[k])))
                numbers.push_back(k);
        }
        if (signs.size() == 1) {
            m_pieces[signs[0]].text = L";";
            m_pieces[signs[0]].blankBefore = false;
        } else if (signs.empty() && numbers.size() == 1) {
            std::size_t const k = numbers[0];
            std::wstring const text =
                isCommaGroup(m_pieces[k]) ? m_pieces[k].decimal : m_pieces[k].text;
            std::size_t const comma = text.find(L',');
            if (comma == 0) return;
            m_pieces[k].text = text.substr(0, comma);
            insert(k + 1, {EPiece::Number, text.substr(comma + 1), true});
            insert(k + 1, {EPiece::Sign, L";"});
        }
    }

    Pieces & m_pieces;
    RevisionNotes & m_notes;
};

} // namespace

void reviseNames(Pieces & pieces, RevisionNotes & notes) { Names(pieces, notes).run(); }

} // namespace Vn::Expressions
