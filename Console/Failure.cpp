#include "Console/Failure.h"

#include <optional>
#include <string_view>

#include "Console/FractionHint.h"
#include "Console/Session/Vocabulary.h"
#include "Console/Terminal/Excerpt.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Limits.h"

namespace Vn::Console {

using namespace Expressions;
using Units::UnitDisplaySettings;

namespace {

constexpr std::size_t c_longestMessage = 400;

bool isKind(Token const * token, TokenKind kind) { return token && token->kind == kind; }

EToken functionOf(Token const & token) {
    return token.kind == TK_NAME ? Tokens::get()->getFunctionToken(token.text) : e_NONE;
}

bool isFraction(Token const * token) {
    return isKind(token, TK_NUMBER) && token->text.find(L'/') != std::wstring_view::npos;
}

// What is wrong, and where.
struct Problem {
    Token const * token;
    std::wstring explanation;
    bool isUnknownName = false;
};

// Looks for what the parser stumbled over.  The parser reports the operator or bracket that it
// couldn't use, which may stand far in front of the word that is to blame.
class Diagnosis {
public:
    explicit Diagnosis(std::wstring_view text) {
        TokenizerRegistry::get()->tokenize(text, m_tokens);
    }

    Problem atEnd() const {
        if (std::optional<Problem> problem = firstProblem()) return *problem;
        return {nullptr, L"the text ends where more is needed"};
    }

    Problem at(unsigned int position) const {
        Token const * before = m_tokens.first();
        Token const * token = before->next;
        for (; token && token->start != position; token = token->next) before = token;
        if (!token) return atEnd();
        if (std::optional<std::wstring> const reason = plainReason(*token, *before))
            return {token, *reason};
        if (nestingAt(token) >= Limits::c_nestingLevels) {
            return {token, L"brackets, functions and signs stand more than " +
                               std::to_wstring(Limits::c_nestingLevels) + L" deep in one another"};
        }
        if (std::optional<Problem> problem = firstProblem()) return *problem;
        return {token, likelyReason(*token, *before)};
    }

    // Whether a fraction ends right in front of the token at `position`.
    bool isAfterFraction(unsigned int position) const {
        Token const * token = m_tokens.first();
        while (token->next && token->next->start != position) token = token->next;
        return token->next && isFraction(token);
    }

private:
    // A bracket that is open, and what it has seen.
    struct Bracket {
        Token const * token;
        Token const * function;     // null if it isn't of a function
        unsigned int separated = 0; // arguments with a ";" after them
        bool hasMore = false;       // something stands after the last ";"

        unsigned int arguments() const { return separated + (hasMore ? 1 : 0); }
    };

    // The first thing from the left that no rule of the language allows.
    std::optional<Problem> firstProblem() const {
        std::vector<Bracket> open;
        Token const * before = nullptr;
        for (Token const * token = m_tokens.first()->next; token; token = token->next) {
            if (std::optional<Problem> problem = problemWith(*token, before, open)) return problem;
            before = token;
        }
        return std::nullopt;
    }

    static std::optional<Problem> problemWith(Token const & token, Token const * before,
                                              std::vector<Bracket> & open) {
        if (token.kind == TK_RIGHT_PAREN) {
            if (open.empty()) return Problem{&token, L"this bracket closes none"};
            Bracket const bracket = open.back();
            open.pop_back();
            return wrongCount(bracket);
        }
        if (token.kind == TK_SEMICOLON) {
            if (open.empty() || !open.back().function)
                return Problem{&token, L"\";\" stands only between the arguments of a function"};
            ++open.back().separated;
            open.back().hasMore = false;
            return std::nullopt;
        }
        if (token.kind == TK_END) {
            for (; !open.empty(); open.pop_back()) {
                if (!open.back().function)
                    return Problem{open.back().token, L"a bracket isn't closed"};
                if (std::optional<Problem> problem = wrongCount(open.back())) return problem;
            }
            return std::nullopt;
        }
        if (std::optional<std::wstring> reason = reasonInItself(token))
            return Problem{&token, *std::move(reason)};
        if (!open.empty()) open.back().hasMore = true;
        if (token.kind == TK_LEFT_PAREN) {
            bool const ofFunction = before && functionOf(*before) != e_NONE;
            open.push_back({&token, ofFunction ? before : nullptr});
        }
        if (token.kind != TK_NAME) return std::nullopt;
        if (functionOf(token) != e_NONE) {
            if (isKind(token.next, TK_LEFT_PAREN)) return std::nullopt;
            return Problem{&token, L"the arguments of " + inQuotes(token.text) +
                                       L" go in brackets after it"};
        }
        if (Vocabulary::isKnown(token.text)) return std::nullopt;
        return Problem{&token, inQuotes(token.text) + L" isn't a unit, a function or a constant",
                       true};
    }

    static std::optional<Problem> wrongCount(Bracket const & bracket) {
        if (!bracket.function) return std::nullopt;
        unsigned int const wanted = functionArity(*functionOfToken(functionOf(*bracket.function)));
        unsigned int const given = bracket.arguments();
        if (given == wanted) return std::nullopt;
        return Problem{bracket.function,
                       inQuotes(bracket.function->text) + L" takes " +
                           (wanted == 0   ? std::wstring(L"no arguments")
                            : wanted == 1 ? std::wstring(L"1 argument")
                                          : std::to_wstring(wanted) + L" arguments") +
                           L", not " + std::to_wstring(given)};
    }

    // Why no text can hold the token.
    static std::optional<std::wstring> reasonInItself(Token const & token) {
        if (token.kind == TK_EQUALS) return L"\"=\" has no meaning in an expression";
        if (token.kind != TK_UNKNOWN) return std::nullopt;
        if (Text::isDigit(static_cast<char32_t>(token.text.front())))
            return L"a number isn't complete";
        return inQuotes(token.text.substr(0, characterLength(token.text, 0))) +
               L" has no meaning in an expression";
    }

    // Why a number can't stand after what is good in itself.
    static std::optional<std::wstring> plainReason(Token const & token, Token const & before) {
        if (token.kind != TK_NUMBER) return std::nullopt;
        if (isFraction(&before))
            return L"a number can't follow the fraction " + inQuotes(trimmed(before.text));
        bool const operandBefore = before.kind == TK_NUMBER || before.kind == TK_RIGHT_PAREN ||
                                   (before.kind == TK_NAME && functionOf(before) == e_NONE &&
                                    Vocabulary::isKnown(before.text));
        if (!operandBefore) return std::nullopt;
        return L"an operator is missing in front of the number";
    }

    static std::wstring likelyReason(Token const & token, Token const & before) {
        if (before.kind == TK_LEFT_PAREN && token.kind != TK_RIGHT_PAREN)
            return L"what stands in the brackets can't be understood";
        switch (token.kind) {
        case TK_POWER:
            if (before.kind == TK_NAME || before.kind == TK_RIGHT_PAREN) {
                return L"the exponent of a unit must be a whole number above zero, and a unit "
                       L"has " +
                       std::to_wstring(Limits::c_unitFactors) + L" factors at most";
            }
            [[fallthrough]];
        case TK_PLUS:
        case TK_MINUS:
        case TK_MULTIPLY:
        case TK_DIVIDE:
        case TK_MODULO:
            return L"nothing that can be used follows " + inQuotes(token.text);
        case TK_RIGHT_PAREN:
            return before.kind == TK_LEFT_PAREN ? L"nothing stands in the brackets"
                                                : L"something is missing in front of the bracket";
        case TK_LEFT_PAREN:
            return L"an operator is missing in front of the bracket";
        case TK_NAME:
            return before.kind == TK_RIGHT_PAREN && functionOf(token) == e_NONE
                       ? L"a unit can stand only after a number"
                       : L"an operator is missing in front of " + inQuotes(token.text);
        default:
            return L"this can't stand here";
        }
    }

    // How many brackets, functions and signs are open in front of `wanted`.
    std::size_t nestingAt(Token const * wanted) const {
        std::vector<std::size_t> open; // what each bracket and the signs in front of it add
        std::size_t levels = 0;
        std::size_t signs = 0;
        bool operandBefore = false;
        for (Token const * token = m_tokens.first()->next; token != wanted; token = token->next) {
            switch (token->kind) {
            case TK_LEFT_PAREN:
                open.push_back(signs + 1);
                levels += signs + 1;
                signs = 0;
                operandBefore = false;
                break;
            case TK_RIGHT_PAREN:
                if (!open.empty()) {
                    levels -= open.back();
                    open.pop_back();
                }
                [[fallthrough]];
            case TK_NUMBER:
                signs = 0;
                operandBefore = true;
                break;
            case TK_NAME:
                if (functionOf(*token) == e_NONE) signs = 0;
                operandBefore = true;
                break;
            case TK_MINUS:
                if (!operandBefore) ++signs;
                operandBefore = false;
                break;
            default:
                operandBefore = false;
                break;
            }
        }
        return levels + signs;
    }

    TokenList m_tokens;
};

std::wstring mismatch(ParseResult const & result) {
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    return L"a result " + describeUnits(result.expected(), settings) +
           L" is expected, but this is " + describeUnits(result.evaluated(), settings);
}

} // namespace

Failure explainFailure(Expression const & expression) {
    ParseResult const & result = expression.result();
    Failure failure;
    failure.message = clipped(result.toString(), c_longestMessage);
    switch (result.result()) {
    case EResult::expressionIsEmpty:
        failure.explanation = L"there is nothing to evaluate";
        return failure;
    case EResult::unitMismatch:
        failure.explanation = mismatch(result);
        return failure;
    case EResult::unitsDontEval:
        failure.explanation = L"the units of its parts don't go together";
        return failure;
    case EResult::badUnitString:
        failure.explanation = L"the unit isn't known";
        return failure;
    case EResult::unknownResult:
    case EResult::parsedOk:
        return failure;
    case EResult::abruptTermination:
    case EResult::failedToParse:
        break;
    }

    bool const atEnd = result.result() == EResult::abruptTermination;
    Diagnosis const diagnosis(expression.text());
    Problem const problem = atEnd ? diagnosis.atEnd() : diagnosis.at(result.position());
    failure.explanation = problem.explanation;
    failure.position = !atEnd          ? result.position()
                       : problem.token ? problem.token->start
                                       : Text::length16(expression.text());
    failure.hint = fractionHint(expression.text(), expression.context());
    if (!failure.hint.empty()) return failure;
    if (problem.isUnknownName)
        failure.suggestions = Vocabulary::get().nearest(problem.token->text);
    else if (!atEnd && diagnosis.isAfterFraction(result.position()))
        failure.hint = L"to divide by more than the fraction takes, put the divisor in brackets";
    return failure;
}

std::wstring explainNoValue() {
    return L"a divisor is nearly zero, a number is too large, or a function isn't defined for its "
           L"argument";
}

std::wstring suggestionLine(Failure const & failure) {
    if (failure.suggestions.empty()) return {};
    std::wstring text = L"  did you mean ";
    std::size_t const count = failure.suggestions.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) text += i + 1 == count ? L" or " : L", ";
        text += failure.suggestions[i];
    }
    return text + L"?\n";
}

std::string failureText(Expression const & expression) {
    Failure const failure = explainFailure(expression);
    std::wstring text = failure.message;
    if (!failure.explanation.empty()) text += L": " + failure.explanation;
    text += L'\n';
    Excerpt const excerpt = excerptAt(expression.text(), failure.position);
    if (!excerpt.text.empty()) text += L"  " + excerpt.text + L'\n';
    EResult const result = expression.result().result();
    if (result == EResult::failedToParse || result == EResult::abruptTermination)
        text += L"  " + excerpt.caret + L'\n';
    text += suggestionLine(failure);
    if (!failure.hint.empty()) text += L"  " + failure.hint + L'\n';
    return Text::toUtf8(text);
}

} // namespace Vn::Console
