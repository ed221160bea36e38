#include "Console/UnitTexts.h"

#include <algorithm>

#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Console {

using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitContext;
using Units::UnitDisplaySettings;

std::optional<UnitContext> unitContext(std::wstring const & text) {
    UnitContext context = text.empty() ? UnitContext(&ComplexUnit::none()) : UnitContext(text);
    if (!context.hasExpectedUnits()) return std::nullopt;
    return context;
}

std::wstring unitText(ComplexUnit const & units, UnitDisplaySettings const & settings) {
    return units.reconstructString(1.0, Units::UnitOnly, settings);
}

std::wstring internalUnitText(ComplexUnit const & units, UnitDisplaySettings const & settings) {
    ComplexUnit base;
    units.produceBaseRepresentation(base);
    return unitText(base, settings);
}

std::wstring namedUnits(ComplexUnit const & units, UnitDisplaySettings const & settings) {
    std::wstring const text = clipped(unitText(units, settings));
    if (text.empty()) return message(L"no unit");
    SimpleUnit const * const kind = Units::findEquivalentUnit(units);
    return kind ? message(L"%1% (%2%)", text, kind->simpleUnitTypeName()) : text;
}

std::wstring describeUnits(ComplexUnit const & units, UnitDisplaySettings const & settings) {
    return units.isUnitless() ? message(L"without units")
                              : message(L"in %1%", namedUnits(units, settings));
}

std::wstring shownNumber(double value, UnitDisplaySettings const & settings) {
    std::wstring text = shortestNumber(value);
    if (!settings.isDecimalPointFullStop()) std::replace(text.begin(), text.end(), L'.', L',');
    return text;
}

std::wstring shownNumber(double value) { return shownNumber(value, UnitDisplaySettings::get()); }

wchar_t const * listSeparator() {
    return UnitDisplaySettings::get().isDecimalPointFullStop() ? L", " : L"; ";
}

} // namespace Vn::Console
