// Why a tree is there, or isn't.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_PARSERESULT_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_PARSERESULT_H

#include <string>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/ParseFailure.h"
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

// May be used again for another parse.  A setter overwrites the result and leaves no reason; only
// failedToParse, unitMismatch and failure touch the other fields, so these stay from an earlier
// outcome until overwritten.
class VN_COMMONDATA_API ParseResult {
public:
    // There is a tree.
    void parsedOk() { outcome(EResult::parsedOk); }
    // The text held nothing but blanks.
    void expressionIsEmpty() { outcome(EResult::expressionIsEmpty); }
    // The text ended where more was required.
    void abruptTermination() { outcome(EResult::abruptTermination); }
    // The token that begins at `position`, counted in 16-bit characters from 0, couldn't be used.
    void failedToParse(unsigned int position) {
        outcome(EResult::failedToParse);
        m_position = position;
    }
    // The units of the expression aren't of the expected dimension.
    void unitMismatch(Units::ComplexUnit const & expected, Units::ComplexUnit const & evaluated) {
        outcome(EResult::unitMismatch);
        m_expected = expected;
        m_evaluated = evaluated;
    }
    // The units conflict.
    void unitsDontEval() { outcome(EResult::unitsDontEval); }
    // For callers who read expected units from a text of their own.
    void badUnitString() { outcome(EResult::badUnitString); }
    // Says why, after the outcome was set: the reason, where the piece at fault begins and ends
    // (its last 16-bit character is the one before `end`), and for wrongArgumentCount how many
    // arguments were given.
    void failure(EParseFailure reason, unsigned int start, unsigned int end,
                 unsigned int argumentsGiven = 0) {
        m_failure = reason;
        m_failureStart = start;
        m_failureEnd = end;
        m_argumentsGiven = argumentsGiven;
    }

    // The outcome.
    EResult result() const { return m_result; }
    // For callers who keep outcomes elsewhere; the other fields stay.
    void result(EResult result) { m_result = result; }
    // 0 until failedToParse sets it.
    unsigned int position() const { return m_position; }
    // Empty until unitMismatch sets them.
    Units::ComplexUnit const & expected() const { return m_expected; }
    Units::ComplexUnit const & evaluated() const { return m_evaluated; }

    // Why there is no tree.  A parse without one always leaves a reason, one with a tree none.
    EParseFailure failure() const { return m_failure; }
    // Where the piece at fault begins and ends in the text, counted in 16-bit characters from 0;
    // equal if it is empty.  It may lie after position(), which is where the parse stopped.  0
    // until failure sets them.
    unsigned int failureStart() const { return m_failureStart; }
    unsigned int failureEnd() const { return m_failureEnd; }
    // Of the function with a wrong count of arguments, how many it was given.
    unsigned int argumentsGiven() const { return m_argumentsGiven; }

    // The outcome in words, for diagnostics: the same in every language.
    std::wstring toString() const;

private:
    void outcome(EResult result) {
        m_result = result;
        m_failure = EParseFailure::none;
    }

    unsigned int m_position = 0;
    EResult m_result = EResult::unknownResult;
    Units::ComplexUnit m_expected;
    Units::ComplexUnit m_evaluated;
    unsigned int m_failureStart = 0;
    unsigned int m_failureEnd = 0;
    unsigned int m_argumentsGiven = 0;
    EParseFailure m_failure = EParseFailure::none;
};

} // namespace Vn::Expressions

#endif
