#include "Console/SettingsTexts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using Field = Units::UnitDisplaySettingsField;
using Units::ESettingsField;

namespace {

constexpr std::pair<std::string_view, wchar_t const *> c_meanings[] = {
    {"generalUnit", tr(L"length unit of new documents: 0 mm, 1 cm, 2 m, 3 in, 4 ft")},
    {"generalPrecision", tr(L"decimals of a value")},
    {"angularPrecision", tr(L"decimals of a value in degrees")},
    {"scientificPrecision", tr(L"decimals before an exponent")},
    {"lengthDisplay", tr(L"0 decimal, 1 fractional, 2 feet and inches")},
    {"degreeDisplay", tr(L"0 decimal, 1 minutes and seconds")},
    {"compressUnits", tr(L"m^3 rather than m m m")},
    {"scientificNotation", tr(L"exponents for big and small values")},
    {"decimalPointIsFullStop", tr(L"1.5 rather than 1,5")},
    {"displayAbbreviated", tr(L"cm rather than centimeter")},
    {"displaySymbol", tr(L"the symbol of a unit that has one")},
    {"specifiedByNode", tr(L"the format comes from a number as it was typed")},
    {"hideTrailingZeroes", tr(L"4.02 rather than 4.020")},
    {"minimumPrecision", tr(L"decimals kept when zeroes are hidden")},
    {"useScientificNotationAboveThreshold", tr(L"greater values get an exponent")},
    {"useScientificNotationBelowThreshold", tr(L"smaller values get an exponent")},
};

bool isDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Whether a full stop may part thousands for who writes the decimal mark as a comma: "10.000".
bool looksGrouped(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    std::size_t const stop = text.find('.');
    return stop != text.npos && stop > 0 && stop <= 3 && text.front() != '0' &&
           text.size() == stop + 4 && isDigits(text.substr(0, stop)) &&
           isDigits(text.substr(stop + 1));
}

// NaN for what can't be read.
double readValue(Field const & field, std::wstring const & text,
                 Units::UnitDisplaySettings const & settings) {
    if (field.kind == ESettingsField::Flag) {
        for (wchar_t const * const yes : {L"true", L"on", L"yes", L"1"})
            if (Text::foldedEqual(text, std::wstring_view(yes))) return 1.0;
        for (wchar_t const * const no : {L"false", L"off", L"no", L"0"})
            if (Text::foldedEqual(text, std::wstring_view(no))) return 0.0;
        return std::nan("");
    }
    std::string utf8 = Text::toUtf8(text);
    if (!settings.isDecimalPointFullStop()) std::replace(utf8.begin(), utf8.end(), ',', '.');
    double value = 0.0;
    auto const [end, error] = std::from_chars(utf8.data(), utf8.data() + utf8.size(), value);
    return error == std::errc() && end == utf8.data() + utf8.size() ? value : std::nan("");
}

} // namespace

std::wstring settingMeaning(Units::UnitDisplaySettingsField const & field) {
    auto const found =
        std::find_if(std::begin(c_meanings), std::end(c_meanings),
                     [&](auto const & meaning) { return meaning.first == field.name; });
    return found == std::end(c_meanings) ? std::wstring() : message(found->second);
}

std::wstring setSetting(Units::UnitDisplaySettingsField const & field,
                        Units::UnitDisplaySettings & settings, double value) {
    if (Units::setUnitDisplaySettingsField(field, settings, value)) return {};
    return message(L"%1% takes a whole number from %2% to %3%", Text::widen(field.name),
                   static_cast<int>(field.low), static_cast<int>(field.high));
}

Field const * findSetting(std::wstring const & name) {
    for (Field const & field : Units::unitDisplaySettingsFields())
        if (Text::foldedEqual(std::string_view(field.name), Text::toUtf8(name))) return &field;
    return nullptr;
}

std::wstring noSuchSetting(std::wstring const & name, wchar_t const * otherwise) {
    auto const nameOf = [](Field const & field) { return Text::widen(field.name); };
    auto const nearest = Spelling::nearest(name, Units::unitDisplaySettingsFields(),
                                           Spelling::allowedMistakes(name.size()), nameOf);
    if (nearest.empty()) return message(otherwise, inQuotes(name));
    return message(L"there is no setting %1%; did you mean %2%?", inQuotes(name),
                   nameOf(*nearest.front()));
}

std::wstring readSetting(Field const & field, std::wstring const & text,
                         Units::UnitDisplaySettings & settings) {
    if (field.kind != ESettingsField::Flag && !settings.isDecimalPointFullStop() &&
        looksGrouped(Text::toUtf8(text))) {
        std::wstring decimal = text;
        std::replace(decimal.begin(), decimal.end(), L'.', L',');
        std::wstring whole = text;
        std::erase(whole, L'.');
        return message(L"%1% can mean %2% or %3%: write one of these", inQuotes(text), decimal,
                       whole);
    }
    double const value = readValue(field, text, settings);
    if (!std::isnan(value)) return setSetting(field, settings, value);
    return message(field.kind == ESettingsField::Flag ? tr(L"%1% is true or false, not %2%")
                                                      : tr(L"%1% is a number, not %2%"),
                   Text::widen(field.name), inQuotes(text));
}

std::vector<std::wstring> settingWords(Field const & field) {
    constexpr double c_mostChoices = 10.0; // more are numbers
    if (field.kind == ESettingsField::Flag) return {L"true", L"false"};
    std::vector<std::wstring> words;
    if (field.kind != ESettingsField::Whole || field.high - field.low >= c_mostChoices)
        return words;
    for (double value = field.low; value <= field.high; ++value)
        words.push_back(shortestNumber(value));
    return words;
}

std::wstring settingValue(Field const & field, Units::UnitDisplaySettings const & settings) {
    double const value = field.get(settings);
    if (field.kind == ESettingsField::Flag) return value != 0.0 ? L"true" : L"false";
    return shortestNumber(value);
}

} // namespace Vn::Console
