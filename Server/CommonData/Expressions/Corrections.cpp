#include <algorithm>
#include <optional>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/CorrectionsInternal.h"
#include "Server/CommonData/Expressions/DoubtsInternal.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"
#include "Server/CommonData/Expressions/RevisionInternal.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/Vocabulary.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

namespace {

// Longer texts aren't typed by people.
constexpr std::size_t c_longestText = 1000;
constexpr std::size_t c_mostTexts = 3;
// More words that nothing is known of are no slips.
constexpr std::size_t c_mostUnknown = 2;

class Search {
public:
    Search(std::wstring const & text, Units::UnitContext const & context,
           ParseResult const & result, CorrectionDemands const & demands)
        : m_text(text), m_context(context), m_result(result), m_demands(demands),
          m_pieces(takenApart(text)) {}

    Corrections run() {
        RevisionNotes notes = freshNotes();
        std::wstring const first = revised(m_pieces, notes);
        m_found.missing = notes.missing;
        m_found.nearest = notes.nearest;
        m_found.scaled = notes.scaled;
        if (!notes.missing.empty()) return std::move(m_found);
        if (notes.unknown.empty() && notes.unknownFunctions.empty()) {
            bool const hasGroups = notes.hasGroups;
            bool const hasAlternatives = notes.hasAlternatives;
            consider(first);
            for (std::size_t i = 1; hasAlternatives && i < c_mostTexts; ++i) {
                notes = freshNotes();
                notes.alternative = i;
                consider(revised(m_pieces, notes));
            }
            for (std::size_t i = 0; hasGroups && i < c_mostTexts; ++i) {
                notes = freshNotes();
                notes.alternative = i;
                notes.areDecimals = true;
                consider(revised(m_pieces, notes));
            }
            if (m_found.texts.size() > c_mostTexts) m_found.texts.resize(c_mostTexts);
            readingsOfPiece();
        } else {
            guess(notes);
        }
        if (m_found.texts.empty()) m_found.scaled.clear();
        return std::move(m_found);
    }

private:
    RevisionNotes freshNotes() const {
        RevisionNotes notes;
        if (!m_demands.settings.isDecimalPointFullStop()) notes.decimalMark = L',';
        return notes;
    }

    std::wstring_view piece() const {
        std::size_t const start = Text::indexAt16(m_text, m_result.failureStart());
        std::size_t const end = Text::indexAt16(m_text, m_result.failureEnd());
        return std::wstring_view(m_text).substr(start, std::max(start, end) - start);
    }

    // Keeps a text that is good.  False if it isn't.
    bool consider(std::wstring const & text) {
        if (text.empty() || text == m_text) return false;
        if (std::find(m_found.texts.begin(), m_found.texts.end(), text) != m_found.texts.end())
            return true;
        Expression const expression(text, m_context);
        m_bOtherUnits = expression.result().result() == EResult::unitMismatch;
        std::optional<double> const value = expression.value();
        if (!value || isDoubtful(m_text, text)) return false;
        m_values.push_back(*value);
        if (isWanted(expression)) m_found.texts.push_back(text);
        return true;
    }

    bool isWanted(Expression const & correction) const {
        Units::ComplexUnit const * const shown = m_demands.display.expectedUnits();
        std::optional<Units::ComplexUnit> const units = correction.units();
        if (shown && !(units && shown->isDimensionallyEquivalent(&*units))) return false;
        std::wstring_view const text = correction.text();
        return !m_demands.isUnit ||
               (text.starts_with(c_one) && Units::UnitContext::parse(text.substr(c_one.size())));
    }

    // What the word at fault means, if replacing it alone would do.
    void readingsOfPiece() {
        if (m_result.failure() != EParseFailure::unknownName) return;
        std::size_t const start = Text::indexAt16(m_text, m_result.failureStart());
        Pieces const word = takenApart(piece());
        for (std::size_t i = 0; i < c_mostTexts; ++i) {
            RevisionNotes notes = freshNotes();
            notes.alternative = i;
            std::wstring const meant = revised(word, notes);
            if (meant.empty() || !notes.scaled.empty() || (i > 0 && !notes.hasAlternatives)) return;
            std::wstring text = m_text;
            text.replace(start, piece().size(), meant);
            bool const isNew =
                std::find(m_found.words.begin(), m_found.words.end(), meant) == m_found.words.end();
            std::optional<double> const value = Expression(text, m_context).value();
            // Where the whole text has no value yet, the word is right all the same.
            bool const isAll =
                value ? std::find(m_values.begin(), m_values.end(), *value) != m_values.end()
                      : m_values.empty();
            if (isNew && isAll) m_found.words.push_back(meant);
        }
    }

    // Tries the nearest spellings of words that nothing is known of.
    void guess(RevisionNotes const & notes) {
        auto const place =
            notes.unknown.empty() ? Vocabulary::EPlace::Function : Vocabulary::EPlace::Any;
        std::vector<std::wstring> words =
            notes.unknown.empty() ? notes.unknownFunctions : notes.unknown;
        std::sort(words.begin(), words.end());
        words.erase(std::unique(words.begin(), words.end()), words.end());
        if (words.size() > c_mostUnknown ||
            (!notes.unknown.empty() && !notes.unknownFunctions.empty()))
            return;
        RevisionNotes best = freshNotes();
        std::vector<std::wstring> nearest;
        for (std::wstring const & word : words) {
            nearest = Vocabulary::get().nearest(word, placeOf(word, place));
            if (nearest.empty()) return;
            best.guesses[word] = nearest.front();
        }
        m_found.guessed = true;
        if (words.size() > 1) {
            consider(revised(m_pieces, best));
            return;
        }
        for (std::wstring const & candidate : nearest) {
            RevisionNotes again = freshNotes();
            again.guesses[words.front()] = candidate;
            m_bOtherUnits = false;
            if (consider(replaced(words.front(), candidate, again)) || !m_bOtherUnits)
                if (words.front() == piece()) m_found.words.push_back(candidate);
        }
    }

    // The text with a guess in the place of a word.
    std::wstring replaced(std::wstring const & word, std::wstring const & candidate,
                          RevisionNotes & notes) const {
        if (isUnitWord(candidate) || Tokens::get()->getFunctionToken(candidate) != e_NONE)
            return revised(m_pieces, notes);
        Pieces pieces = m_pieces;
        for (Piece & piece : pieces)
            if (piece.is(EPiece::Word, word)) piece.text = candidate;
        return revised(std::move(pieces), notes);
    }

    // What may stand where a word does.
    Vocabulary::EPlace placeOf(std::wstring const & word, Vocabulary::EPlace otherwise) const {
        if (otherwise == Vocabulary::EPlace::Function) return otherwise;
        for (std::size_t i = 0; i < m_pieces.size(); ++i) {
            if (!m_pieces[i].is(EPiece::Word, word)) continue;
            bool const isAfterUnits = i > 0 && (m_pieces[i - 1].kind == EPiece::Number ||
                                                m_pieces[i - 1].kind == EPiece::Word);
            return isAfterUnits ? Vocabulary::EPlace::Unit : Vocabulary::EPlace::Any;
        }
        return Vocabulary::EPlace::Unit; // a part of a word
    }

    std::wstring const & m_text;
    Units::UnitContext const & m_context;
    ParseResult const & m_result;
    CorrectionDemands const & m_demands;
    Pieces const m_pieces;
    Corrections m_found;
    std::vector<double> m_values; // of the texts that were found
    bool m_bOtherUnits = false;   // the text that was considered last isn't of the expected units
};

} // namespace

Corrections findCorrections(std::wstring const & text, Units::UnitContext const & context,
                            ParseResult const & result, CorrectionDemands const & demands) {
    if (text.size() > c_longestText) {
        Corrections found;
        if (result.failure() == EParseFailure::unknownName) {
            std::size_t const start = Text::indexAt16(text, result.failureStart());
            std::size_t const end = Text::indexAt16(text, result.failureEnd());
            std::wstring_view const piece = std::wstring_view(text).substr(start, end - start);
            found.words = Vocabulary::get().nearest(piece, Vocabulary::EPlace::Any);
        }
        return found;
    }
    Corrections found = Search(text, context, result, demands).run();
    if (demands.isUnit)
        for (std::wstring & each : found.texts) each.erase(0, c_one.size());
    return found;
}

} // namespace Vn::Expressions
