#include "Console/CommandLine/EvalCommand.h"

#include <ostream>

#include "Console/Answer.h"
#include "Console/CommandLine/ExitStatus.h"
#include "Console/Evaluation.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using Expressions::Expression;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// One line; false if the answer isn't a value.
bool evaluateAsJson(Expression const & expression, UnitDisplaySettings const & settings,
                    UnitContext const & display, bool withTokens, std::ostream & out) {
    std::wstring const error = whyNotShown(expression, settings, display);
    out << "{\"text\":" << jsonText(expression.text()) << ',';
    if (error.empty())
        out << answerMembers(expression, settings, display, withTokens);
    else
        out << "\"error\":" << jsonText(error);
    out << "}\n";
    return error.empty() && expression.value();
}

} // namespace

int runEval(EvalOptions const & options, std::ostream & out, std::ostream & err) {
    OpenedUnits units;
    if (int const status = openUnits(options.units, units, err); status != ExitGood) return status;
    UnitContext context;
    if (int const status = makeDocumentContext(options.units, options.unit, units, context, err);
        status != ExitGood)
        return status;
    UnitContext display = context;
    if (options.display && !readUnitContext(*options.display, "vnconsole: --display", display, err))
        return ExitBadUsage;
    UnitDisplaySettings const & settings =
        options.standard ? UnitDisplaySettings::standard() : UnitDisplaySettings::get();

    bool good = true;
    bool first = true;
    for (std::wstring const & text : options.texts) {
        Expression const expression(text, context);
        if (options.json) {
            good &= evaluateAsJson(expression, settings, display, options.withTokens, out);
            continue;
        }
        if (options.texts.size() > 1) {
            if (!first) out << '\n';
            out << Text::toUtf8(printable(text)) << '\n';
        }
        first = false;
        good &= showEvaluation(expression, settings, display, out, err);
    }
    return good ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
