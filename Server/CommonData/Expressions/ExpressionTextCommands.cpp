// The text commands of the subject area "Expressions".

#include <boost/format.hpp>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/TextCommand.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Expressions {

using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

constexpr wchar_t c_subject[] = L"Expressions";
constexpr wchar_t c_lineEnd[] = L"\r\n";
constexpr wchar_t const * c_noExpression = localizable(
    L"You need to specify an expression as a parameter and may need to use quotes to get a single "
    L"string");

TextCommandResult failure(std::wstring text) { return {1, std::move(text)}; }

// Makes `context` that of a unit or a unit string.  False if the text is neither.
bool readContext(std::wstring const & text, UnitContext & context) {
    if (Units::SimpleUnit const * const unit = Tokens::get()->findMatchingUnit(text))
        context = UnitContext(unit);
    else
        context = UnitContext(text);
    return context.hasExpectedUnits();
}

class TextCommandSubjectAreaExpressions : public TextCommandSubjectArea {
public:
    TextCommandSubjectAreaExpressions()
        : TextCommandSubjectArea(c_subject, localizable(L"Commands that operate on expression"),
                                 false) {}
};

class TextCmdExpressionsParse : public TextCommand {
public:
    TextCmdExpressionsParse()
        : TextCommand(c_subject, L"Parse",
                      localizable(L"[/UnitOnly] [/ValueOnly] <Expression> [ExpectedUnit] "
                                  L"[DisplayUnit] Parses and evaluates the passed expression"),
                      "", false, true) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        if (parameters.parameters() == 0) return failure(localized(c_noExpression));
        std::wstring const & text = parameters.parameter(0);
        Units::EUnitDisplayMode mode = Units::ValueAndUnit;
        if (parameters.hasFlag(L"UnitOnly")) mode = Units::UnitOnly;
        if (parameters.hasFlag(L"ValueOnly")) mode = Units::ValueOnly;

        UnitContext context;
        if (parameters.parameters() > 1 && !readContext(parameters.parameter(1), context)) {
            return failure(
                localized(L"The second parameter doesn't parse as expected units - do you "
                          L"need to use quotes?"));
        }
        Expression const expression(text, context);
        std::wstring answer =
            text + L" gave a parse result " + expression.result().toString() + c_lineEnd;
        std::optional<Units::ComplexUnit> units;
        if (expression) {
            if (std::optional<double> const value = expression.value()) {
                answer += (boost::wformat(L"Evaluation succeeded with a result of %1%",
                                          std::locale::classic()) %
                           *value)
                              .str();
            } else {
                answer += L"Evaluation failed";
            }
            answer += c_lineEnd;
            units = expression.units();
            answer += units ? L"Unit Evaluation succeeded with a result of " + units->toString()
                            : std::wstring(L"Unit evaluation failed");
            answer += c_lineEnd;
        }

        UnitContext display = context;
        if (parameters.parameters() > 2 && !readContext(parameters.parameter(2), display)) {
            return failure(localized(L"The third parameter doesn't parse as display units - do you "
                                     L"need to use quotes?"));
        }
        if (units) {
            UnitDisplaySettings const & settings = UnitDisplaySettings::get();
            // As the engine formats it, whatever the display unit is.
            answer += L"Formatted value -> " +
                      Interface::get()->formattedValue(expression.node(), mode, settings, display);
            answer += c_lineEnd;
            answer += L"String reconstruction produced -> " + expression.rebuilt(mode, settings);
            answer += c_lineEnd;
        }
        if (parameters.parameters() > 3) {
            answer += c_lineEnd;
            answer +=
                L"Did you need to use quotes so the expression came across as a single string??";
        }
        return {0, std::move(answer)};
    }
};

class TextCmdExpressionsTokenize : public TextCommand {
public:
    TextCmdExpressionsTokenize()
        : TextCommand(c_subject, L"Tokenize",
                      localizable(L"<Expression> Parses the passed expressions into tokens - the "
                                  L"first step on the parsing process"),
                      "", false, true) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        if (parameters.parameters() == 0) return failure(localized(c_noExpression));
        std::wstring const & text = parameters.parameter(0);
        TokenList tokens;
        TokenizerRegistry::get()->tokenize(text, tokens);
        std::wstring answer = text + L" parsed as ";
        for (Token const * token = tokens.first(); token; token = token->next)
            answer += token->text;
        return {0, std::move(answer)};
    }
};

TextCommandSubjectAreaExpressions s_subjectArea VN_LOAD_EXPRESSION_COMMANDS;
TextCmdExpressionsParse s_parse VN_LOAD_EXPRESSION_COMMANDS;
TextCmdExpressionsTokenize s_tokenize VN_LOAD_EXPRESSION_COMMANDS;

} // namespace

} // namespace Vn::Expressions
