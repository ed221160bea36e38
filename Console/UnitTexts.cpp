#include "Console/UnitTexts.h"

#include "Console/Texts.h"
#include "Server/CommonData/Units/SimpleUnit.h"
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
    if (text.empty()) return L"no unit";
    SimpleUnit const * const kind = Units::findEquivalentUnit(units);
    return kind ? text + L" (" + kind->simpleUnitTypeName() + L')' : text;
}

std::wstring describeUnits(ComplexUnit const & units, UnitDisplaySettings const & settings) {
    return units.isUnitless() ? L"without units" : L"in " + namedUnits(units, settings);
}

} // namespace Vn::Console
