#include "Console/SettingsTexts.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Vn::Console {

namespace {

constexpr std::pair<std::string_view, wchar_t const *> c_meanings[] = {
    {"generalUnit", L"length unit of new documents: 0 mm, 1 cm, 2 m, 3 in, 4 ft"},
    {"generalPrecision", L"decimals of a value"},
    {"angularPrecision", L"decimals of a value in degrees"},
    {"scientificPrecision", L"decimals before an exponent"},
    {"lengthDisplay", L"0 decimal, 1 fractional, 2 feet and inches"},
    {"degreeDisplay", L"0 decimal, 1 minutes and seconds"},
    {"compressUnits", L"m^3 rather than m m m"},
    {"scientificNotation", L"exponents for big and small values"},
    {"decimalPointIsFullStop", L"1.5 rather than 1,5"},
    {"displayAbbreviated", L"cm rather than centimeter"},
    {"displaySymbol", L"the symbol of a unit that has one"},
    {"specifiedByNode", L"the format comes from a number as it was typed"},
    {"hideTrailingZeroes", L"4.02 rather than 4.020"},
    {"minimumPrecision", L"decimals kept when zeroes are hidden"},
    {"useScientificNotationAboveThreshold", L"greater values get an exponent"},
    {"useScientificNotationBelowThreshold", L"smaller values get an exponent"},
};

} // namespace

std::wstring settingMeaning(Units::UnitDisplaySettingsField const & field) {
    auto const found =
        std::find_if(std::begin(c_meanings), std::end(c_meanings),
                     [&](auto const & meaning) { return meaning.first == field.name; });
    return found == std::end(c_meanings) ? std::wstring() : found->second;
}

std::string setSetting(Units::UnitDisplaySettingsField const & field,
                       Units::UnitDisplaySettings & settings, double value) {
    if (Units::setUnitDisplaySettingsField(field, settings, value)) return {};
    return std::string(field.name) + " takes a whole number from " +
           std::to_string(static_cast<int>(field.low)) + " to " +
           std::to_string(static_cast<int>(field.high));
}

} // namespace Vn::Console
