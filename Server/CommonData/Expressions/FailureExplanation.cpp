#include "Server/CommonData/Expressions/FailureExplanation.h"

#include <algorithm>
#include <optional>

#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/CorrectionsInternal.h"
#include "Server/CommonData/Expressions/FailureTextsInternal.h"
#include "Server/CommonData/Expressions/FractionHintInternal.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Expressions {

using Text::filled;
using Units::ComplexUnit;

std::wstring failureText(EFailureText text) {
    switch (text) {
#define VN_FAILURE_TEXT(name, english)                                                             \
    case EFailureText::name:                                                                       \
        return StringTable::getLocalizedString("VnCommonData", "Failure" #name, english);
#include "Server/CommonData/Expressions/FailureTexts.inc"
    }
    return {};
}

namespace {

constexpr std::size_t c_longestOutcome = 400;

// The parts of an explanation, from a text and the result of parsing it.
class Explainer {
public:
    Explainer(std::wstring const & text, ParseResult const & result)
        : m_text(text), m_rResult(result), m_piece(pieceOf(text, result)) {}

    std::wstring outcome() const {
        switch (m_rResult.result()) {
        case EResult::unknownResult:
            break;
        case EResult::parsedOk:
            return failureText(EFailureText::OutcomeNoValue);
        case EResult::expressionIsEmpty:
            return failureText(EFailureText::OutcomeEmpty);
        case EResult::abruptTermination:
            return failureText(EFailureText::OutcomeTermination);
        case EResult::failedToParse:
            return filled(failureText(EFailureText::OutcomeParse),
                          {std::to_wstring(m_rResult.position())});
        case EResult::unitMismatch:
            return filled(failureText(EFailureText::OutcomeMismatch),
                          {m_rResult.expected().toString(), m_rResult.evaluated().toString()});
        case EResult::unitsDontEval:
            return failureText(EFailureText::OutcomeUnits);
        case EResult::badUnitString:
            return failureText(EFailureText::OutcomeUnitText);
        }
        return failureText(EFailureText::OutcomeUnknown);
    }

    std::wstring explanation() const {
        switch (m_rResult.failure()) {
        case EParseFailure::none:
            return withoutReason();
        case EParseFailure::emptyText:
            return failureText(EFailureText::EmptyText);
        case EParseFailure::textEndsTooSoon:
            return failureText(EFailureText::TextEndsTooSoon);
        case EParseFailure::unknownName:
            return ofPiece(EFailureText::UnknownName);
        case EParseFailure::unusableCharacter:
            return ofPiece(EFailureText::UnusableCharacter);
        case EParseFailure::numberIncomplete:
            return failureText(EFailureText::NumberIncomplete);
        case EParseFailure::operandMissing:
            return ofPiece(EFailureText::OperandMissing);
        case EParseFailure::leftOperandMissing:
            return ofPiece(EFailureText::LeftOperandMissing);
        case EParseFailure::operatorMissing:
            return operatorMissing();
        case EParseFailure::numberAfterFraction:
            return ofPiece(EFailureText::NumberAfterFraction);
        case EParseFailure::unitAfterBracket:
            return failureText(EFailureText::UnitAfterBracket);
        case EParseFailure::bracketNotClosed:
            return failureText(EFailureText::BracketNotClosed);
        case EParseFailure::bracketClosesNone:
            return failureText(EFailureText::BracketClosesNone);
        case EParseFailure::emptyBrackets:
            return failureText(EFailureText::EmptyBrackets);
        case EParseFailure::semicolonOutsideFunction:
            return failureText(EFailureText::SemicolonOutsideFunction);
        case EParseFailure::functionWithoutBrackets:
            return ofPiece(EFailureText::FunctionWithoutBrackets);
        case EParseFailure::wrongArgumentCount:
            return wrongArgumentCount();
        case EParseFailure::nestedTooDeep:
            return filled(failureText(EFailureText::NestedTooDeep),
                          {std::to_wstring(Limits::c_nestingLevels)});
        case EParseFailure::exponentOfUnit:
            return failureText(EFailureText::ExponentOfUnit);
        case EParseFailure::unitTooLong:
            return filled(failureText(EFailureText::UnitTooLong),
                          {std::to_wstring(Limits::c_unitFactors)});
        case EParseFailure::otherThanUnitsInBrackets:
            return ofPiece(EFailureText::OtherThanUnitsInBrackets);
        case EParseFailure::differentUnits:
            return ofPiece(function() == e_NONE ? EFailureText::DifferentUnits
                                                : EFailureText::DifferentUnitsArguments);
        case EParseFailure::unitsOfPower:
            return failureText(EFailureText::UnitsOfPower);
        case EParseFailure::unitsOfArgument:
            return unitsOfArgument();
        case EParseFailure::otherThanExpectedUnits:
            return mismatch();
        }
        return {};
    }

    // Whether the parse stopped right after a fraction, for want of an operator.
    bool isAfterFraction() const {
        if (m_rResult.failure() == EParseFailure::numberAfterFraction) return true;
        if (m_rResult.failure() != EParseFailure::operatorMissing) return false;
        TokenList tokens;
        TokenizerRegistry::get()->tokenize(m_text, tokens);
        Token const * token = tokens.first();
        while (token->next && token->next->start != m_rResult.failureStart()) token = token->next;
        return token->next && isFraction(*token);
    }

private:
    static std::wstring_view pieceOf(std::wstring_view text, ParseResult const & result) {
        std::size_t const start = Text::indexAt16(text, result.failureStart());
        std::size_t const end = Text::indexAt16(text, result.failureEnd());
        return text.substr(start, std::max(start, end) - start);
    }

    std::wstring shownPiece() const { return Text::printable(Text::clipped(m_piece)); }
    std::wstring ofPiece(EFailureText text) const {
        return filled(failureText(text), {shownPiece()});
    }
    EToken function() const { return Tokens::get()->getFunctionToken(m_piece); }

    // For results that others made.
    std::wstring withoutReason() const {
        switch (m_rResult.result()) {
        case EResult::parsedOk:
            return failureText(EFailureText::NoValue);
        case EResult::expressionIsEmpty:
            return failureText(EFailureText::EmptyText);
        case EResult::abruptTermination:
            return failureText(EFailureText::TextEndsTooSoon);
        case EResult::unitMismatch:
            return mismatch();
        case EResult::unitsDontEval:
            return failureText(EFailureText::DifferentUnitsSomewhere);
        case EResult::badUnitString:
            return failureText(EFailureText::UnitNotKnown);
        case EResult::unknownResult:
        case EResult::failedToParse:
            break;
        }
        return {};
    }

    std::wstring operatorMissing() const {
        wchar_t const first = m_piece.empty() ? L'\0' : m_piece.front();
        if (first == L'(') return failureText(EFailureText::OperatorMissingBracket);
        bool const isNumber =
            Text::isDigit(static_cast<char32_t>(first)) || first == L'.' || first == L',';
        return isNumber ? failureText(EFailureText::OperatorMissingNumber)
                        : ofPiece(EFailureText::OperatorMissing);
    }

    std::wstring wrongArgumentCount() const {
        std::optional<FunctionId> const called = functionOfToken(function());
        if (!called) return {};
        unsigned int const wanted = functionArity(*called);
        std::wstring const given = std::to_wstring(m_rResult.argumentsGiven());
        if (wanted == 0)
            return filled(failureText(EFailureText::TakesNoArguments), {shownPiece(), given});
        if (wanted == 1)
            return filled(failureText(EFailureText::TakesOneArgument), {shownPiece(), given});
        return filled(failureText(EFailureText::TakesArguments),
                      {shownPiece(), std::to_wstring(wanted), given});
    }

    std::wstring unitsOfArgument() const {
        std::optional<FunctionId> const called = functionOfToken(function());
        bool const isAngle = called && functionTakesAngle(*called);
        return ofPiece(isAngle ? EFailureText::ArgumentIsAngle : EFailureText::ArgumentIsPure);
    }

    static std::wstring shownUnits(ComplexUnit const & units) {
        Units::UnitDisplaySettings const & settings = Units::UnitDisplaySettings::get();
        std::wstring text = Text::clipped(units.reconstructString(1.0, Units::UnitOnly, settings));
        Units::SimpleUnit const * const kind = Units::findEquivalentUnit(units);
        if (!kind) return text;
        return filled(failureText(EFailureText::UnitAndKind), {text, kind->simpleUnitTypeName()});
    }

    std::wstring mismatch() const {
        ComplexUnit const & expected = m_rResult.expected();
        ComplexUnit const & evaluated = m_rResult.evaluated();
        if (expected.isUnitless() && evaluated.isUnitless())
            return failureText(EFailureText::DifferentUnitsSomewhere);
        if (expected.isUnitless())
            return filled(failureText(EFailureText::MismatchExpectedPure), {shownUnits(evaluated)});
        if (evaluated.isUnitless())
            return filled(failureText(EFailureText::MismatchPure), {shownUnits(expected)});
        return filled(failureText(EFailureText::Mismatch),
                      {shownUnits(expected), shownUnits(evaluated)});
    }

    std::wstring_view const m_text;
    ParseResult const & m_rResult;
    std::wstring_view const m_piece;
};

std::wstring questionOf(std::vector<std::wstring> const & suggestions) {
    switch (suggestions.size()) {
    case 0:
        return {};
    case 1:
        return filled(failureText(EFailureText::DidYouMean), {suggestions[0]});
    case 2:
        return filled(failureText(EFailureText::DidYouMeanTwo), {suggestions[0], suggestions[1]});
    default:
        return filled(failureText(EFailureText::DidYouMeanThree),
                      {suggestions[0], suggestions[1], suggestions[2]});
    }
}

// Whether the text itself is at fault, rather than what it means.
bool isSyntax(EResult result) {
    return result == EResult::failedToParse || result == EResult::abruptTermination;
}

// Whether another text may be what was meant.
bool canBeCorrected(EResult result) {
    return isSyntax(result) || result == EResult::unitsDontEval || result == EResult::unitMismatch;
}

// "write 5 N m".  Empty for texts that are too long to be read in a line.
std::wstring writeInstead(std::vector<std::wstring> const & texts) {
    constexpr std::size_t c_longest = 160;
    std::size_t length = 0;
    for (std::wstring const & text : texts) length += text.size();
    if (texts.empty() || length > c_longest) return {};
    switch (texts.size()) {
    case 1:
        return filled(failureText(EFailureText::HintWrite), {texts[0]});
    case 2:
        return filled(failureText(EFailureText::HintWriteTwo), {texts[0], texts[1]});
    default:
        return filled(failureText(EFailureText::HintWriteThree), {texts[0], texts[1], texts[2]});
    }
}

// What to tell of corrections beside the question.
std::wstring hintOf(Corrections const & found) {
    if (!found.missing.empty() && found.nearest.empty())
        return filled(failureText(EFailureText::HintNoUnit), {found.missing});
    if (!found.missing.empty())
        return filled(failureText(EFailureText::HintNearestUnit), {found.missing, found.nearest});
    if (!found.scaled.empty() && !found.texts.empty())
        return filled(failureText(EFailureText::HintOtherUnit), {found.scaled, found.texts[0]});
    return found.guessed ? std::wstring() : writeInstead(found.texts);
}

void correct(std::wstring const & text, ParseResult const & result, Corrections found,
             TextAround const & around, FailureExplanation & failure) {
    for (std::wstring & each : found.texts) each = around.before + each + around.after;
    failure.hint = Text::printable(hintOf(found));
    // What was refused is no suggestion, whatever it would mean elsewhere.
    std::size_t const start = Text::indexAt16(text, result.failureStart());
    std::size_t const end = Text::indexAt16(text, result.failureEnd());
    std::erase(found.words, text.substr(start, std::max(start, end) - start));
    failure.suggestions = std::move(found.words);
    failure.question = questionOf(failure.suggestions);
    failure.corrections = std::move(found.texts);
}

// What there is to tell without corrections, with places in the text itself.
FailureExplanation explained(Explainer const & explainer, ParseResult const & result) {
    FailureExplanation failure;
    failure.reason = result.failure();
    if (failure.reason != EParseFailure::none) {
        failure.start = result.failureStart();
        failure.end = result.failureEnd();
    }
    failure.position =
        result.result() == EResult::failedToParse ? result.position() : failure.start;
    failure.hasPlace = isSyntax(result.result()) ||
                       failure.reason == EParseFailure::differentUnits ||
                       failure.reason == EParseFailure::unitTooLong ||
                       failure.reason == EParseFailure::unitsOfPower ||
                       failure.reason == EParseFailure::unitsOfArgument;
    failure.outcome = Text::clipped(explainer.outcome(), c_longestOutcome);
    failure.explanation = explainer.explanation();
    failure.message = failure.explanation.empty() ? failure.outcome
                                                  : filled(failureText(EFailureText::Message),
                                                           {failure.outcome, failure.explanation});
    return failure;
}

CorrectionDemands demandsOf(TextAround const & around, bool isUnit) {
    return {around.display, around.settings ? *around.settings : Units::UnitDisplaySettings::get(),
            isUnit};
}

void shift(FailureExplanation & failure, std::size_t by) {
    failure.position += by;
    failure.start += by;
    failure.end += by;
}

} // namespace

FailureExplanation explainFailure(std::wstring const & text, Units::UnitContext const & context,
                                  ParseResult const & result, TextAround const & around) {
    Explainer const explainer(text, result);
    FailureExplanation failure = explained(explainer, result);
    shift(failure, Text::length16(around.before));
    if (isSyntax(result.result())) {
        std::wstring correction;
        failure.hint = fractionHint(text, context, around, correction);
        if (!correction.empty()) failure.corrections.push_back(correction);
        if (!failure.hint.empty()) return failure;
    }
    if (canBeCorrected(result.result()))
        correct(text, result, findCorrections(text, context, result, demandsOf(around, false)),
                around, failure);
    if (failure.hint.empty() && isSyntax(result.result()) && explainer.isAfterFraction())
        failure.hint = failureText(EFailureText::HintLongDivisor);
    return failure;
}

FailureExplanation explainFailure(Expression const & expression, TextAround const & around) {
    return explainFailure(expression.text(), expression.context(), expression.result(), around);
}

FailureExplanation explainUnit(std::wstring const & unit, TextAround const & around) {
    // A unit is read as the unit of a number.
    Expression const one(std::wstring(c_one) + unit);
    ParseResult const & result = one.result();
    FailureExplanation failure = explained(Explainer(one.text(), result), result);
    for (std::size_t * const place : {&failure.position, &failure.start, &failure.end})
        *place -= std::min(*place, c_one.size());
    shift(failure, Text::length16(around.before));
    if (isSyntax(result.result()))
        correct(one.text(), result,
                findCorrections(one.text(), one.context(), result, demandsOf(around, true)), around,
                failure);
    return failure;
}

char const * failureName(EParseFailure reason) {
    switch (reason) {
#define VN_REASON(name)                                                                            \
    case EParseFailure::name:                                                                      \
        return #name;
        VN_REASON(none)
        VN_REASON(emptyText)
        VN_REASON(textEndsTooSoon)
        VN_REASON(unknownName)
        VN_REASON(unusableCharacter)
        VN_REASON(numberIncomplete)
        VN_REASON(operandMissing)
        VN_REASON(leftOperandMissing)
        VN_REASON(operatorMissing)
        VN_REASON(numberAfterFraction)
        VN_REASON(unitAfterBracket)
        VN_REASON(bracketNotClosed)
        VN_REASON(bracketClosesNone)
        VN_REASON(emptyBrackets)
        VN_REASON(semicolonOutsideFunction)
        VN_REASON(functionWithoutBrackets)
        VN_REASON(wrongArgumentCount)
        VN_REASON(nestedTooDeep)
        VN_REASON(exponentOfUnit)
        VN_REASON(unitTooLong)
        VN_REASON(otherThanUnitsInBrackets)
        VN_REASON(differentUnits)
        VN_REASON(unitsOfPower)
        VN_REASON(unitsOfArgument)
        VN_REASON(otherThanExpectedUnits)
#undef VN_REASON
    }
    return "";
}

} // namespace Vn::Expressions
