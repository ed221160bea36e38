#include "Console/SettingsFields.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vn::Console {

using Units::UnitDisplaySettings;

namespace {

using Settings = UnitDisplaySettings;
using Kind = SettingsField::Kind;

constexpr double c_shortest = std::numeric_limits<short>::min();
constexpr double c_longest = std::numeric_limits<short>::max();

constexpr SettingsField c_fields[] = {
    {"generalUnit", Kind::Whole, c_shortest, c_longest,
     "length unit of new documents: 0 mm, 1 cm, 2 m, 3 in, 4 ft",
     [](Settings const & s) { return static_cast<double>(s.generalUnit()); },
     [](Settings & s, double v) { s.generalUnit(static_cast<short>(v)); }},
    {"generalPrecision", Kind::Whole, c_shortest, c_longest, "decimals of a value",
     [](Settings const & s) { return static_cast<double>(s.generalPrecision()); },
     [](Settings & s, double v) { s.generalPrecision(static_cast<short>(v)); }},
    {"angularPrecision", Kind::Whole, c_shortest, c_longest, "decimals of a value in degrees",
     [](Settings const & s) { return static_cast<double>(s.angularPrecision()); },
     [](Settings & s, double v) { s.angularPrecision(static_cast<short>(v)); }},
    {"scientificPrecision", Kind::Whole, c_shortest, c_longest, "decimals before an exponent",
     [](Settings const & s) { return static_cast<double>(s.scientificPrecision()); },
     [](Settings & s, double v) { s.scientificPrecision(static_cast<short>(v)); }},
    {"lengthDisplay", Kind::Whole, 0, 2, "0 decimal, 1 fractional, 2 feet and inches",
     [](Settings const & s) { return static_cast<double>(s.lengthDisplay()); },
     [](Settings & s, double v) {
         s.lengthDisplay(static_cast<Units::ELengthDisplay>(static_cast<int>(v)));
     }},
    {"degreeDisplay", Kind::Whole, 0, 1, "0 decimal, 1 minutes and seconds",
     [](Settings const & s) { return static_cast<double>(s.degreeDisplay()); },
     [](Settings & s, double v) {
         s.degreeDisplay(static_cast<Units::EDegreeDisplay>(static_cast<int>(v)));
     }},
    {"compressUnits", Kind::Flag, 0, 1, "m^3 rather than m m m",
     [](Settings const & s) { return s.compressUnits() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.compressUnits(v != 0.0); }},
    {"scientificNotation", Kind::Flag, 0, 1, "exponents for big and small values",
     [](Settings const & s) { return s.scientificNotation() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.scientificNotation(v != 0.0); }},
    {"decimalPointIsFullStop", Kind::Flag, 0, 1, "1.5 rather than 1,5",
     [](Settings const & s) { return s.isDecimalPointFullStop() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.decimalPointIsFullStop(v != 0.0); }},
    {"displayAbbreviated", Kind::Flag, 0, 1, "cm rather than centimeter",
     [](Settings const & s) { return s.shouldDisplayAbbreviation() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.displayAbbreviated(v != 0.0); }},
    {"displaySymbol", Kind::Flag, 0, 1, "the symbol of a unit that has one",
     [](Settings const & s) { return s.shouldDisplaySymbol() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.displaySymbol(v != 0.0); }},
    {"specifiedByNode", Kind::Flag, 0, 1, "the format comes from a number as it was typed",
     [](Settings const & s) { return s.specifiedByNode() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.specifiedByNode(v != 0.0); }},
    {"hideTrailingZeroes", Kind::Flag, 0, 1, "4.02 rather than 4.020",
     [](Settings const & s) { return s.hideTrailingZeroes() ? 1.0 : 0.0; },
     [](Settings & s, double v) { s.hideTrailingZeroes(v != 0.0); }},
    {"minimumPrecision", Kind::Whole, c_shortest, c_longest, "decimals kept when zeroes are hidden",
     [](Settings const & s) { return static_cast<double>(s.minimumPrecision()); },
     [](Settings & s, double v) { s.minimumPrecision(static_cast<short>(v)); }},
    {"useScientificNotationAboveThreshold", Kind::Number, 0, 0, "greater values get an exponent",
     [](Settings const & s) { return s.useScientificNotationAboveThreshold(); },
     [](Settings & s, double v) { s.useScientificNotationAboveThreshold(v); }},
    {"useScientificNotationBelowThreshold", Kind::Number, 0, 0, "smaller values get an exponent",
     [](Settings const & s) { return s.useScientificNotationBelowThreshold(); },
     [](Settings & s, double v) { s.useScientificNotationBelowThreshold(v); }},
};

} // namespace

std::span<SettingsField const> settingsFields() { return c_fields; }

SettingsField const * findSettingsField(std::string_view name) {
    auto const found = std::find_if(std::begin(c_fields), std::end(c_fields),
                                    [name](SettingsField const & f) { return name == f.name; });
    return found == std::end(c_fields) ? nullptr : found;
}

std::string setSettingsField(SettingsField const & field, UnitDisplaySettings & settings,
                             double value) {
    if (field.kind == Kind::Whole &&
        !(value >= field.low && value <= field.high && value == std::floor(value))) {
        return std::string(field.name) + " takes a whole number from " +
               std::to_string(static_cast<int>(field.low)) + " to " +
               std::to_string(static_cast<int>(field.high));
    }
    field.set(settings, value);
    return {};
}

} // namespace Vn::Console
