#include "Server/CommonData/Units/SimpleUnit.h"

#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

using Expressions::Tokens;
using Expressions::valueFormatter;

SimpleUnit::SimpleUnit() : m_magnitude(1.0) { SimpleUnitRegistry::get().addUnit(this); }

SimpleUnit::SimpleUnit(double magnitude) : m_magnitude(magnitude) {}

SimpleUnit::~SimpleUnit() = default;

double SimpleUnit::onToInternal(double value) const {
    return (m_magnitude * onInternalConversionFactor()) * value + onInternalConversionOffset();
}

double SimpleUnit::onToThisUnit(double value) const {
    return (value - onInternalConversionOffset()) / (onInternalConversionFactor() * m_magnitude);
}

GlobalizedString SimpleUnit::globalizedSimpleUnitTypeName(ESimpleUnitType type) {
    switch (type) {
#define VN_BASE_KIND(number, name, internal)                                                       \
    case UnitType##name:                                                                           \
        return GlobalizedString("VnCommonData", "UnitType" #name, L## #name);
#define VN_COMPOSITE_KIND(number, name, numerator, denominator)                                    \
    case UnitType##name:                                                                           \
        return GlobalizedString("VnCommonData", "UnitType" #name, L## #name);
#include "Server/CommonData/Units/UnitKinds.inc"
    }
    return GlobalizedString(L"Invalid Unit Type");
}

GlobalizedString SimpleUnit::globalizedSimpleUnitTypeName() const {
    return globalizedSimpleUnitTypeName(simpleUnitType());
}

std::wstring SimpleUnit::simpleUnitTypeName() const {
    return globalizedSimpleUnitTypeName().value();
}

std::wstring const & SimpleUnit::prefixName() const {
    return valueFormatter::get()->magnitudeString(m_magnitude, false);
}

std::wstring const & SimpleUnit::prefixAbbreviation() const {
    return valueFormatter::get()->magnitudeString(m_magnitude, true);
}

std::wstring const & SimpleUnit::prefix(UnitDisplaySettings const & settings) const {
    return settings.shouldDisplayAbbreviation() ? prefixAbbreviation() : prefixName();
}

std::wstring SimpleUnit::name(UnitDisplaySettings const &) const { return prefixName() + onName(); }

std::wstring SimpleUnit::defaultName() const {
    std::wstring text(Tokens::defaultString(Tokens::fullMagnitude(m_magnitude)));
    return text += onName();
}

std::wstring SimpleUnit::abbreviation(UnitDisplaySettings const &) const {
    return prefixAbbreviation() + onAbbreviation();
}

std::wstring SimpleUnit::symbol(UnitDisplaySettings const & settings) const {
    return prefix(settings) + onSymbol();
}

void SimpleUnit::appendDisplayString(std::wstring & text,
                                     UnitDisplaySettings const & settings) const {
    if (settings.shouldDisplaySymbol() && hasSymbol()) {
        text += prefix(settings);
        text += onSymbol();
    } else if (settings.shouldDisplayAbbreviation()) {
        text += prefixAbbreviation();
        text += onAbbreviation();
    } else {
        text += prefixName();
        text += onName();
    }
}

std::wstring SimpleUnit::displayString(UnitDisplaySettings const & settings) const {
    std::wstring text;
    appendDisplayString(text, settings);
    return text;
}

ComplexUnit const & SimpleUnit::asComplexUnit() const {
    return m_asComplexUnit.get([this] {
        ComplexUnit * const units = ComplexUnit::make(this);
        units->validateBase();
        return units;
    });
}

void SimpleUnit::onAppendReconstruction(std::wstring & text, double value, EUnitDisplayMode mode,
                                        UnitDisplaySettings const & settings) const {
    if (mode == UnitOnly) {
        appendDisplayString(text, settings);
        return;
    }
    bool const isInch = this == UnitInch::get();
    bool const isFoot = this == UnitFoot::get();
    bool const isDegree = this == UnitDegree::get();
    bool const node = settings.specifiedByNode();
    // Fractions are always of inches.
    if (settings.lengthDisplay() == LengthFractional && !node && isFoot) {
        UnitInch::get()->appendReconstruction(text, value, mode, settings);
        return;
    }

    valueFormatter const & formatter = *valueFormatter::get();
    double const v = toThisUnit(value);
    bool noUnit = false;
    bool forceSymbol = false;
    if (settings.lengthDisplay() == LengthFractional && (node || isInch)) {
        formatter.appendFractional(text, v);
        forceSymbol = isInch;
    } else if (settings.lengthDisplay() == LengthArchitectural && (node || isInch || isFoot)) {
        formatter.appendArchitectural(text, isInch ? v / 12.0 : v, settings);
        noUnit = true;
    } else if (settings.degreeDisplay() == DegreeDegMinSec && (node || isDegree)) {
        formatter.appendDegMinSec(text, v, settings);
        noUnit = true;
    } else if (settings.degreeDisplay() == DegreeDecimal && isDegree && !node) {
        UnitDisplaySettings angular = settings;
        angular.generalPrecision(settings.angularPrecision());
        formatter.appendDecimal(text, v, angular);
    } else {
        formatter.appendDecimal(text, v, settings);
    }

    if (mode == ValueOnly || noUnit) return;
    if (forceSymbol) {
        UnitDisplaySettings withSymbol = settings;
        withSymbol.displaySymbol(true);
        appendDisplayString(text, withSymbol);
    } else {
        text += L' ';
        appendDisplayString(text, settings);
    }
}

double SimpleUnit::onInternalConversionOffset() const { return 0.0; }

std::wstring const & SimpleUnit::onSymbol() const {
    static std::wstring const s_none;
    return s_none;
}

SimpleUnit const * SimpleUnit::onClone(double) const { return nullptr; }

} // namespace Vn::Units
