#include "Console/SettingsTexts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

#include "Console/Texts.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using Field = Units::UnitDisplaySettingsField;
using Units::ESettingsField;

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

// NaN for what can't be read.
double readValue(Field const & field, std::wstring const & text) {
    if (field.kind == ESettingsField::Flag) {
        for (wchar_t const * const yes : {L"true", L"on", L"yes", L"1"})
            if (Text::foldedEqual(text, std::wstring_view(yes))) return 1.0;
        for (wchar_t const * const no : {L"false", L"off", L"no", L"0"})
            if (Text::foldedEqual(text, std::wstring_view(no))) return 0.0;
        return std::nan("");
    }
    std::string const utf8 = Text::toUtf8(text);
    double value = 0.0;
    auto const [end, error] = std::from_chars(utf8.data(), utf8.data() + utf8.size(), value);
    return error == std::errc() && end == utf8.data() + utf8.size() ? value : std::nan("");
}

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

Field const * findSetting(std::wstring const & name) {
    for (Field const & field : Units::unitDisplaySettingsFields())
        if (Text::foldedEqual(std::string_view(field.name), Text::toUtf8(name))) return &field;
    return nullptr;
}

std::wstring noSuchSetting(std::wstring const & name, std::wstring const & otherwise) {
    auto const nameOf = [](Field const & field) { return Text::widen(field.name); };
    auto const nearest = Spelling::nearest(name, Units::unitDisplaySettingsFields(),
                                           Spelling::allowedMistakes(name.size()), nameOf);
    return L"there is no setting " + inQuotes(name) +
           (nearest.empty() ? otherwise : L"; did you mean " + nameOf(*nearest.front()) + L"?");
}

std::wstring readSetting(Field const & field, std::wstring const & text,
                         Units::UnitDisplaySettings & settings) {
    double const value = readValue(field, text);
    if (!std::isnan(value)) return Text::widen(setSetting(field, settings, value));
    return Text::widen(field.name) +
           (field.kind == ESettingsField::Flag ? L" is true or false, not "
                                               : L" is a number, not ") +
           inQuotes(text);
}

std::wstring settingValue(Field const & field, Units::UnitDisplaySettings const & settings) {
    double const value = field.get(settings);
    if (field.kind == ESettingsField::Flag) return value != 0.0 ? L"true" : L"false";
    return shortestNumber(value);
}

} // namespace Vn::Console
