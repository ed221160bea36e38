#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vn::Units {

namespace {

using Kind = ESettingsField;
using Settings = UnitDisplaySettings;

constexpr double c_shortest = std::numeric_limits<short>::min();
constexpr double c_longest = std::numeric_limits<short>::max();
constexpr double c_infinity = std::numeric_limits<double>::infinity();

constexpr UnitDisplaySettingsField c_fields[] = {
    {"generalUnit", Kind::Whole, c_shortest, c_longest,
     [](Settings const & s) { return static_cast<double>(s.generalUnit()); },
     [](Settings & s, double v) { s.generalUnit(static_cast<short>(v)); }},
    {"generalPrecision", Kind::Whole, c_shortest, c_longest,
     [](Settings const & s) { return static_cast<double>(s.generalPrecision()); },
     [](Settings & s, double v) { s.generalPrecision(static_cast<short>(v)); }},
    {"angularPrecision", Kind::Whole, c_shortest, c_longest,
     [](Settings const & s) { return static_cast<double>(s.angularPrecision()); },
     [](Settings & s, double v) { s.angularPrecision(static_cast<short>(v)); }},
    {"scientificPrecision", Kind::Whole, c_shortest, c_longest,
     [](Settings const & s) { return static_cast<double>(s.scientificPrecision()); },
     [](Settings & s, double v) { s.scientificPrecision(static_cast<short>(v)); }},
    {"lengthDisplay", Kind::Whole, 0, 2,
     [](Settings const & s) { return static_cast<double>(s.lengthDisplay()); },
     [](Settings & s, double v) {
         s.lengthDisplay(static_cast<ELengthDisplay>(static_cast<int>(v)));
     }},
    {"degreeDisplay", Kind::Whole, 0, 1,
     [](Settings const & s) { return static_cast<double>(s.degreeDisplay()); },
     [](Settings & s, double v) {
         s.degreeDisplay(static_cast<EDegreeDisplay>(static_cast<int>(v)));
     }},
    {"compressUnits", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.compressUnits() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.compressUnits(v != 0.0); }},
    {"scientificNotation", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.scientificNotation() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.scientificNotation(v != 0.0); }},
    {"decimalPointIsFullStop", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.isDecimalPointFullStop() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.decimalPointIsFullStop(v != 0.0); }},
    {"displayAbbreviated", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.shouldDisplayAbbreviation() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.displayAbbreviated(v != 0.0); }},
    {"displaySymbol", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.shouldDisplaySymbol() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.displaySymbol(v != 0.0); }},
    {"specifiedByNode", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.specifiedByNode() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.specifiedByNode(v != 0.0); }},
    {"hideTrailingZeroes", Kind::Flag, 0, 1,
     [](Settings const & s) { return s.hideTrailingZeroes() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.hideTrailingZeroes(v != 0.0); }},
    {"minimumPrecision", Kind::Whole, c_shortest, c_longest,
     [](Settings const & s) { return static_cast<double>(s.minimumPrecision()); },
     [](Settings & s, double v) { s.minimumPrecision(static_cast<short>(v)); }},
    {"useScientificNotationAboveThreshold", Kind::Number, -c_infinity, c_infinity,
     [](Settings const & s) { return s.useScientificNotationAboveThreshold(); },
     [](Settings & s, double v) { s.useScientificNotationAboveThreshold(v); }},
    {"useScientificNotationBelowThreshold", Kind::Number, -c_infinity, c_infinity,
     [](Settings const & s) { return s.useScientificNotationBelowThreshold(); },
     [](Settings & s, double v) { s.useScientificNotationBelowThreshold(v); }},
};

} // namespace

std::span<UnitDisplaySettingsField const> unitDisplaySettingsFields() { return c_fields; }

UnitDisplaySettingsField const * findUnitDisplaySettingsField(std::string_view name) {
    auto const found =
        std::find_if(std::begin(c_fields), std::end(c_fields),
                     [name](UnitDisplaySettingsField const & f) { return name == f.name; });
    return found == std::end(c_fields) ? nullptr : found;
}

bool setUnitDisplaySettingsField(UnitDisplaySettingsField const & field,
                                 UnitDisplaySettings & settings, double value) {
    bool const inRange = value >= field.low && value <= field.high; // which nothing but a number is
    if (!inRange || (field.kind != Kind::Number && value != std::floor(value))) return false;
    field.set(settings, value);
    return true;
}

} // namespace Vn::Units
