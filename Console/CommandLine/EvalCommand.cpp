#include "Console/CommandLine/EvalCommand.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/Batch.h"
#include "Console/CommandLine/ExitStatus.h"
#include "Console/Evaluation.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"

namespace Vn::Console {

using Expressions::Expression;
using Expressions::FailureExplanation;
using Json = nlohmann::ordered_json;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

Json jsonText(std::wstring_view text) { return Text::toUtf8(text); }

void showJson(Evaluation const & e, Expression const & expression, Json & object) {
    object["parsed"] = true;
    object["evaluated"] = e.value.has_value();
    object["formatted"] = jsonText(e.formatted);
    object["value"] = e.value ? Json(*e.value) : Json();
    object["internalUnits"] = jsonText(e.internalUnits);
    object["units"] = jsonText(e.units);
    object["rebuilt"] = jsonText(e.rebuilt);
    object["rebuiltReadsBack"] = e.readsBack;
    object["textToStore"] = jsonText(textToStore(e, expression));
    if (!e.error.empty()) object["error"] = jsonText(e.error);
}

void showJson(Expression const & expression, FailureExplanation const & failure, Json & object) {
    object["parsed"] = false;
    object["result"] = resultName(expression.result().result());
    object["position"] = failure.position;
    object["reason"] = failureName(failure.reason);
    object["start"] = failure.start;
    object["end"] = failure.end;
    object["error"] = jsonText(failure.outcome);
    object["explanation"] = jsonText(failure.explanation);
    Json suggestions = Json::array();
    for (std::wstring const & suggestion : failure.suggestions)
        suggestions.push_back(jsonText(suggestion));
    object["suggestions"] = suggestions;
    object["hint"] = jsonText(failure.hint);
}

bool evaluateAsJson(Expression const & expression, UnitDisplaySettings const & settings,
                    UnitContext const & display, std::ostream & out) {
    Json object;
    object["text"] = jsonText(expression.text());
    bool good = false;
    if (expression) {
        Evaluation const e = evaluate(expression, settings, display);
        showJson(e, expression, object);
        good = e.error.empty();
    } else {
        showJson(expression, explainFailure(expression), object);
    }
    out << object.dump() << '\n';
    return good;
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
            good &= evaluateAsJson(expression, settings, display, out);
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
