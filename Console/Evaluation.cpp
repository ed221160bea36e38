#include "Console/Evaluation.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <vector>

#include "Console/Conversion.h"
#include "Console/Equivalents.h"
#include "Console/Failure.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/ReadingNotes.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

namespace Vn::Console {

using Expressions::Expression;
using Units::ComplexUnit;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// Whether texts come out as they do by the factory settings.
bool areStandard(UnitDisplaySettings const & settings) {
    auto const fields = Units::unitDisplaySettingsFields();
    return std::all_of(fields.begin(), fields.end(), [&](auto const & field) {
        return field.get(settings) == field.get(UnitDisplaySettings::standard());
    });
}

// For a rebuilt text that is spelled by other settings than the standard ones.
bool readsBack(Expression const & expression, std::wstring const & rebuilt) {
    Expression const again(rebuilt, expression.context());
    return again && again.value() == expression.value();
}

// Rebuilds an expression, and reads the text back once.
void rebuild(Expression const & expression, UnitDisplaySettings const & settings, Evaluation & e) {
    e.rebuilt = expression.rebuilt(Units::ValueAndUnit, settings);
    if (!areStandard(settings) && e.rebuilt != expression.rebuilt()) {
        e.readsBack = readsBack(expression, e.rebuilt);
        return;
    }
    e.readsBack = expression.rebuiltReadsBack(e.rebuilt);
    e.stored = e.readsBack ? e.rebuilt : expression.text();
}

std::wstring orNone(std::wstring const & units) { return units.empty() ? message(L"none") : units; }

// "2.54 cm".
std::wstring internalText(Evaluation const & e, UnitDisplaySettings const & settings) {
    return shownNumber(*e.value, settings) + (e.internalUnits.empty() ? L"" : L" ") +
           e.internalUnits;
}

// Both streams may go to one terminal, where they must not overtake one another.
void tell(std::string const & text, std::ostream & out, std::ostream & err) {
    out.flush();
    err << text << std::flush;
}

// Whether there is nothing to evaluate, which is told.
bool tellFailure(Request const & request, UnitDisplaySettings const & settings, std::ostream & out,
                 std::ostream & err) {
    if (!request.refusal && request.expression) return false;
    tell(request.refusal ? refusalLines(*request.refusal)
                         : failureLines(request.expression, explainFailure(request, settings)),
         out, err);
    return true;
}

// A line for each unit, with its kind where there are several.
void showEquivalents(Expression const & expression, UnitDisplaySettings const & settings,
                     std::string const & indent, std::ostream & out) {
    std::vector<Equivalent> const all = equivalentsOf(expression, settings);
    std::set<std::wstring> kinds;
    for (Equivalent const & each : all)
        if (!each.kind.empty()) kinds.insert(each.kind);
    Table table;
    for (Equivalent const & each : all) {
        bool const tellsKind = kinds.size() > 1 && !each.kind.empty();
        table.add(tellsKind ? std::vector<std::wstring>{each.formatted, each.kind}
                            : std::vector<std::wstring>{each.formatted});
    }
    out << table.toUtf8(indent);
}

// What was read otherwise than it may be meant.
void tellNotes(Expression const & expression, UnitDisplaySettings const & settings,
               std::ostream & out, std::ostream & err) {
    std::wstring lines;
    for (Expressions::ReadingNote const & note : Expressions::readingNotes(expression, settings))
        lines += message(L"note: %1%", note.text) + L'\n';
    if (!lines.empty()) tell(Text::toUtf8(lines), out, err);
}

} // namespace

Evaluation evaluate(Expression const & expression, UnitDisplaySettings const & settings,
                    UnitContext const & display) {
    Evaluation e;
    e.value = expression.value();
    ComplexUnit const units = expression.units().value_or(ComplexUnit::none());
    e.units = unitText(units, settings);
    e.internalUnits = internalUnitText(units, settings);
    rebuild(expression, settings, e);
    e.error = e.value ? whyNotShown(units, settings, display) : explainFailure(expression).message;
    if (e.error.empty()) e.formatted = expression.formatted(Units::ValueAndUnit, settings, display);
    return e;
}

std::wstring whyNotShown(ComplexUnit const & units, UnitDisplaySettings const & settings,
                         UnitContext const & display) {
    ComplexUnit const * const shown = display.expectedUnits();
    if (!shown || shown->isDimensionallyEquivalent(&units)) return {};
    return message(L"the value is %1% and can't be shown %2%", describeUnits(units, settings),
                   describeUnits(*shown, settings));
}

std::wstring whyNotShown(Expression const & expression, UnitDisplaySettings const & settings,
                         UnitContext const & display) {
    if (!expression.value()) return {};
    return whyNotShown(expression.units().value_or(ComplexUnit::none()), settings, display);
}

std::wstring textToStore(Evaluation const & evaluation, Expression const & expression) {
    return evaluation.stored ? *evaluation.stored : expression.textToStore();
}

bool showEvaluation(Request const & request, UnitDisplaySettings const & settings,
                    UnitContext const & display, std::ostream & out, std::ostream & err) {
    Expression const & expression = request.expression;
    if (tellFailure(request, settings, out, err)) return false;
    UnitContext const & shown = request.target ? *request.target : display;
    Evaluation const e = evaluate(expression, settings, shown);
    if (request.wantsEquivalents && e.value) {
        showEquivalents(expression, settings, {}, out);
        return true;
    }
    Table table;
    if (!e.formatted.empty()) table.add({message(L"formatted"), e.formatted});
    if (e.value) table.add({message(L"internal"), internalText(e, settings)});
    table.add({message(L"units"), orNone(e.units)});
    table.add({message(L"rebuilt"), e.rebuilt});
    if (!e.readsBack) {
        table.add({message(L"store"), printable(textToStore(e, expression))});
        table.add({L"", message(L"(the rebuilt text would not read back to the same value)")});
    }
    out << table.toUtf8();
    tellNotes(expression, settings, out, err);
    if (e.error.empty()) return true;
    tell("vnconsole: " + Text::toUtf8(e.error) + '\n', out, err);
    return false;
}

bool showBriefly(Request const & request, UnitDisplaySettings const & settings,
                 UnitContext const & display, std::ostream & out, std::ostream & err) {
    Expression const & expression = request.expression;
    if (tellFailure(request, settings, out, err)) return false;
    UnitContext const & shown = request.target ? *request.target : display;
    Evaluation const e = evaluate(expression, settings, shown);
    if (!e.error.empty() && !(request.wantsEquivalents && e.value)) {
        tell(Text::toUtf8(e.error) + '\n', out, err);
        return false;
    }
    if (request.wantsEquivalents) {
        showEquivalents(expression, settings, "  ", out);
        return true;
    }
    out << Text::toUtf8(e.formatted) << '\n'
        << messageUtf8(L"  internal %1%, units %2%, rebuilt %3%", internalText(e, settings),
                       orNone(e.units), e.rebuilt)
        << '\n';
    if (!e.readsBack) {
        out << messageUtf8(L"  the rebuilt text would not read back to the same value; store %1%",
                           printable(textToStore(e, expression)))
            << '\n';
    }
    tellNotes(expression, settings, out, err);
    return true;
}

bool readUnitContext(std::wstring const & text, std::string const & what, UnitContext & context,
                     std::ostream & err) {
    if (std::optional<UnitContext> read = unitContext(text)) {
        context = *std::move(read);
        return true;
    }
    err << what << ": " << messageUtf8(L"%1% isn't a unit", inQuotes(text)) << '\n';
    err << Text::toUtf8(hintLine(Expressions::explainUnit(text))) << std::flush;
    return false;
}

} // namespace Vn::Console
