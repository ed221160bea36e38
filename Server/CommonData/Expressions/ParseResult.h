// Why a tree is there, or isn't.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_PARSERESULT_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_PARSERESULT_H

#include <string>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/ComplexUnit.h"

namespace Vn::Expressions {

// The enumerators bear the names of the operations that set them; unknownResult has none.
enum class EResult : int {
    unknownResult = 0,
    parsedOk = 1,
    expressionIsEmpty = 2,
    abruptTermination = 3,
    failedToParse = 4,
    unitMismatch = 5,
    unitsDontEval = 6,
    badUnitString = 7
};

// May be used again for another parse.  A setter overwrites the result; only failedToParse and
// unitMismatch touch the other fields, so these stay from an earlier outcome until overwritten.
class VN_COMMONDATA_API ParseResult {
public:
    // There is a tree.
    void parsedOk() { m_result = EResult::parsedOk; }
    // The text held nothing but blanks.
    void expressionIsEmpty() { m_result = EResult::expressionIsEmpty; }
    // The text ended where more was required.
    void abruptTermination() { m_result = EResult::abruptTermination; }
    // The token that begins at `position`, counted in 16-bit characters from 0, couldn't be used.
    void failedToParse(unsigned int position) {
        m_result = EResult::failedToParse;
        m_position = position;
    }
    // The units of the expression aren't of the expected dimension.
    void unitMismatch(Units::ComplexUnit const & expected, Units::ComplexUnit const & evaluated) {
        m_result = EResult::unitMismatch;
        m_expected = expected;
        m_evaluated = evaluated;
    }
    // The units conflict.
    void unitsDontEval() { m_result = EResult::unitsDontEval; }
    // For callers who read expected units from a text of their own.
    void badUnitString() { m_result = EResult::badUnitString; }

    // The outcome.
    EResult result() const { return m_result; }
    // For callers who keep outcomes elsewhere; the other fields stay.
    void result(EResult result) { m_result = result; }
    // 0 until failedToParse sets it.
    unsigned int position() const { return m_position; }
    // Empty until unitMismatch sets them.
    Units::ComplexUnit const & expected() const { return m_expected; }
    Units::ComplexUnit const & evaluated() const { return m_evaluated; }

    // The outcome in words, for diagnostics: the same in every language.
    std::wstring toString() const;

private:
    unsigned int m_position = 0;
    EResult m_result = EResult::unknownResult;
    Units::ComplexUnit m_expected;
    Units::ComplexUnit m_evaluated;
};

} // namespace Vn::Expressions

#endif
