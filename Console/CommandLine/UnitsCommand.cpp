#include "Console/CommandLine/UnitsCommand.h"

#include <ostream>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Console {

using Units::SimpleUnit;
using Units::UnitDisplaySettings;

namespace {

struct Row {
    std::wstring name;
    std::wstring abbreviation;
    std::wstring symbol;
    std::wstring kind;
    double one; // of the unit, in internal units
    std::wstring internalUnit;
    bool prefixes;
};

Row rowOf(SimpleUnit const & unit) {
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    return {unit.name(settings),
            unit.abbreviation(settings),
            unit.hasSymbol() ? unit.symbol(settings) : std::wstring(),
            unit.simpleUnitTypeName(),
            unit.toInternal(1.0),
            internalUnitText(unit.asComplexUnit(), settings),
            unit.supportsMagnitude()};
}

std::vector<Row> rowsFor(std::wstring const & pattern) {
    std::vector<Row> rows;
    for (SimpleUnit const * const unit : Units::listUnits()) {
        // The others are these with a prefix.
        if (unit->magnitude() != 1.0) continue;
        Row row = rowOf(*unit);
        // The catalogue's own name of the kind too, which examples in every language have.
        std::wstring const kind = unit->globalizedSimpleUnitTypeName().defaultText();
        for (std::wstring const & text : {row.name, row.abbreviation, row.symbol, row.kind, kind}) {
            if (!containsFolded(text, pattern)) continue;
            rows.push_back(std::move(row));
            break;
        }
    }
    return rows;
}

void showJson(Row const & row, std::ostream & out) {
    nlohmann::ordered_json object;
    object["name"] = Text::toUtf8(row.name);
    object["abbreviation"] = Text::toUtf8(row.abbreviation);
    object["symbol"] = Text::toUtf8(row.symbol);
    object["kind"] = Text::toUtf8(row.kind);
    object["one"] = row.one;
    object["internalUnit"] = Text::toUtf8(row.internalUnit);
    object["prefixes"] = row.prefixes;
    out << object.dump() << '\n';
}

} // namespace

int runUnits(std::wstring const & pattern, bool json, std::ostream & out, std::ostream & err) {
    std::vector<Row> const rows = rowsFor(pattern);
    if (rows.empty()) {
        return told(message(L"no unit matches %1%", inQuotes(pattern)), err);
    }
    Table table;
    table.add({message(L"name"), message(L"abbreviation"), message(L"symbol"), message(L"kind"),
               message(L"one is"), message(L"prefixes")});
    for (Row const & row : rows) {
        if (json) {
            showJson(row, out);
            continue;
        }
        std::wstring one = shownNumber(row.one);
        if (!row.internalUnit.empty()) one += L' ' + row.internalUnit;
        table.add({row.name, row.abbreviation, row.symbol, row.kind, one,
                   row.prefixes ? message(L"yes") : message(L"no")});
    }
    if (!json) out << table.toUtf8();
    return ExitGood;
}

} // namespace Vn::Console
