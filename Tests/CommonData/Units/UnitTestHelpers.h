// Short forms that the tests of units share.

#ifndef VN_TESTS_COMMONDATA_UNITS_UNITTESTHELPERS_H
#define VN_TESTS_COMMONDATA_UNITS_UNITTESTHELPERS_H

#include <cstddef>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

inline std::vector<SimpleUnit const *> allUnits() {
    std::vector<SimpleUnit const *> units;
    SimpleUnitRegistry::get().allUnits(units);
    return units;
}

// The 71 objects of magnitude 1.0, in catalogue order.
inline std::vector<SimpleUnit const *> catalogueUnits() {
    std::vector<SimpleUnit const *> units;
    for (SimpleUnit const * const unit : allUnits())
        if (unit->magnitude() == 1.0) units.push_back(unit);
    return units;
}

// The unit of a word, as the expression language reads it.
inline SimpleUnit const * unitOf(std::wstring_view word) {
    return Expressions::Tokens::get()->findMatchingUnit(word);
}

// A unit of those words; a word that names no unit is left out, so that a slip shows.
inline ComplexUnit complexUnit(std::initializer_list<wchar_t const *> numerator,
                               std::initializer_list<wchar_t const *> denominator = {}) {
    ComplexUnit units;
    for (wchar_t const * const word : numerator)
        if (SimpleUnit const * const unit = unitOf(word)) units.addToNumerator(unit);
    for (wchar_t const * const word : denominator)
        if (SimpleUnit const * const unit = unitOf(word)) units.addToDenominator(unit);
    return units;
}

// The user's settings, put back at the end.
class SettingsGuard {
public:
    SettingsGuard() : m_before(UnitDisplaySettings::get()) {}
    ~SettingsGuard() { UnitDisplaySettings::userEditableSettings() = m_before; }
    SettingsGuard(SettingsGuard const &) = delete;
    SettingsGuard & operator=(SettingsGuard const &) = delete;

private:
    UnitDisplaySettings const m_before;
};

// The abbreviations of the entries, separated by blanks.
inline std::wstring abbreviations(UnitSpan units) {
    std::wstring text;
    for (SimpleUnit const * const unit : units) {
        if (!text.empty()) text += L' ';
        text += unit->abbreviation(UnitDisplaySettings::standard());
    }
    return text;
}

// Both lists, as "cm kg / s s".
inline std::wstring abbreviations(ComplexUnit const & units) {
    std::wstring const below = abbreviations(units.denominator());
    return abbreviations(units.numerator()) + (below.empty() ? L"" : L" / " + below);
}

// The lines of an answer, each of which ends with a carriage return and a line feed.
inline std::vector<std::wstring> linesOf(std::wstring const & text) {
    std::vector<std::wstring> lines;
    std::size_t start = 0;
    for (std::size_t end = text.find(L"\r\n"); end != text.npos; end = text.find(L"\r\n", start)) {
        lines.push_back(text.substr(start, end - start));
        start = end + 2;
    }
    if (start < text.size()) lines.push_back(L"not ended: " + text.substr(start));
    return lines;
}

// An expression in a context, shown under the standard settings; empty if it doesn't parse.
inline std::wstring shown(std::wstring const & expression, UnitContext const & context) {
    return Expressions::Expression(expression, context)
        .formatted(ValueAndUnit, UnitDisplaySettings::standard(), context);
}

// Prints the units of a failing comparison by what they are called.
inline void PrintTo(SimpleUnit const * unit, std::ostream * out) {
    if (unit)
        *out << *unit->identifier() << " * " << unit->magnitude();
    else
        *out << "no unit";
}

} // namespace Vn::Units

#endif
