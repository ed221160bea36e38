#include "Server/CommonData/Units/ComplexUnit.h"

#include <algorithm>

#include "Platform/Base/Shared.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitListTextInternal.h"
#include "Server/CommonData/Units/Utils.h"

namespace Vn::Units {

using Expressions::Tokens;
using Expressions::valueFormatter;

namespace {

using BasePowers = std::array<int, 9>;

// The base kinds in the order in which their internal units stand in the catalogue.
struct CatalogueOrder {
    std::array<BaseUnit const *, c_baseKinds> units;

    CatalogueOrder() {
        units = {
#define VN_BASE_KIND(number, name, internal) name##Unit::staticInternalBaseUnit(),
#include "Server/CommonData/Units/UnitKinds.inc"
        };
        std::sort(units.begin(), units.end(), [](BaseUnit const * a, BaseUnit const * b) {
            return std::less<>()(a->identifier(), b->identifier());
        });
    }
};

CatalogueOrder const & catalogueOrder() {
    static constinit Shared<CatalogueOrder const> s_order;
    return s_order.get([] { return new CatalogueOrder; });
}

// Adds `sign` times what `unit` is made of.
void addPowers(BasePowers & powers, SimpleUnit const & unit, int sign) {
    if (unit.unitType() == BaseUnitKind) {
        auto const & base = static_cast<BaseUnit const &>(unit);
        powers[base.internalBaseUnit()->simpleUnitType()] += sign;
        return;
    }
    ComplexUnit const * const product =
        static_cast<CompositeUnit const &>(unit).internalComplexUnit();
    for (SimpleUnit const * const u : product->numerator()) powers[u->simpleUnitType()] += sign;
    for (SimpleUnit const * const u : product->denominator()) powers[u->simpleUnitType()] -= sign;
}

} // namespace

ComplexUnit::ComplexUnit() = default;

ComplexUnit::ComplexUnit(SimpleUnit const * unit) { m_numerator.push_back(unit); }

ComplexUnit::ComplexUnit(ComplexUnit const & other)
    : Unit(other), m_numerator(other.m_numerator), m_denominator(other.m_denominator) {}

ComplexUnit & ComplexUnit::operator=(ComplexUnit const & other) {
    m_numerator = other.m_numerator;
    m_denominator = other.m_denominator;
    invalidateBase();
    return *this;
}

ComplexUnit::~ComplexUnit() = default;

ComplexUnit * ComplexUnit::make() { return new ComplexUnit; }
ComplexUnit * ComplexUnit::make(SimpleUnit const * unit) { return new ComplexUnit(unit); }
ComplexUnit * ComplexUnit::make(ComplexUnit const & other) { return new ComplexUnit(other); }
void ComplexUnit::destroy(ComplexUnit * units) { delete units; }

ComplexUnit const & ComplexUnit::none() {
    static constinit Shared<ComplexUnit const> s_none;
    return s_none.get([] {
        ComplexUnit * const units = make();
        units->validateBase();
        return units;
    });
}

void ComplexUnit::addToNumerator(SimpleUnit const * unit) {
    m_numerator.push_back(unit);
    invalidateBase();
}

void ComplexUnit::addToDenominator(SimpleUnit const * unit) {
    m_denominator.push_back(unit);
    invalidateBase();
}

void ComplexUnit::addToNumerator(UnitSpan units) {
    m_numerator.insert(m_numerator.end(), units.begin(), units.end());
    invalidateBase();
}

void ComplexUnit::addToDenominator(UnitSpan units) {
    m_denominator.insert(m_denominator.end(), units.begin(), units.end());
    invalidateBase();
}

void ComplexUnit::multiplyBy(ComplexUnit const * other) {
    addToNumerator(other->numerator());
    addToDenominator(other->denominator());
}

void ComplexUnit::divideBy(ComplexUnit const * other) {
    addToNumerator(other->denominator());
    addToDenominator(other->numerator());
}

void ComplexUnit::invert() {
    m_numerator.swap(m_denominator);
    invalidateBase();
}

void ComplexUnit::assign(SimpleUnit const * unit) {
    m_numerator.assign(1, unit);
    m_denominator.clear();
    invalidateBase();
}

void ComplexUnit::clear() {
    m_numerator.clear();
    m_denominator.clear();
    invalidateBase();
}

bool ComplexUnit::isSimpleUnit(SimpleUnit const ** unit) const {
    if (!isLoneUnit()) return false;
    if (unit) *unit = m_numerator.front();
    return true;
}

bool ComplexUnit::isBaseUnit(BaseUnit const ** unit) const {
    if (!isLoneUnit() || m_numerator.front()->unitType() != BaseUnitKind) return false;
    if (unit) *unit = static_cast<BaseUnit const *>(m_numerator.front());
    return true;
}

bool ComplexUnit::isIdentical(ComplexUnit const * other) const {
    return this == other ||
           (m_numerator == other->m_numerator && m_denominator == other->m_denominator);
}

bool ComplexUnit::isUnitless() const {
    if (isEmpty()) return true;
    validateBaseIfNecessary();
    return m_basePowers == BasePowers{};
}

bool ComplexUnit::isDimensionallyEquivalent(ComplexUnit const * other) const {
    if (this == other) return true;
    validateBaseIfNecessary();
    other->validateBaseIfNecessary();
    return m_basePowers == other->m_basePowers;
}

bool ComplexUnit::isEquivalent(ComplexUnit const * other) const {
    return isDimensionallyEquivalent(other) &&
           Utils::essentiallyEqual(baseConversionFactor(), other->baseConversionFactor());
}

double ComplexUnit::baseConversionFactor() const {
    validateBaseIfNecessary();
    return m_baseFactor;
}

void ComplexUnit::produceBaseRepresentation(ComplexUnit & out) const {
    validateBaseIfNecessary();
    BasePowers const powers = m_basePowers;
    out.clear();
    for (BaseUnit const * const unit : catalogueOrder().units) {
        int const power = powers[unit->simpleUnitType()];
        List & list = power < 0 ? out.m_denominator : out.m_numerator;
        list.insert(list.end(), static_cast<std::size_t>(std::abs(power)), unit);
    }
}

void ComplexUnit::validateBase() const {
    m_basePowers = {};
    m_baseFactor = 1.0;
    for (SimpleUnit const * const unit : m_numerator) {
        addPowers(m_basePowers, *unit, 1);
        m_baseFactor *= unit->toInternal(1.0);
    }
    for (SimpleUnit const * const unit : m_denominator) {
        addPowers(m_basePowers, *unit, -1);
        m_baseFactor /= unit->toInternal(1.0);
    }
    m_baseValid = true;
}

double ComplexUnit::onToInternal(double value) const {
    if (isLoneUnit()) return m_numerator.front()->toInternal(value);
    double factor = 1.0;
    for (SimpleUnit const * const unit : m_numerator) factor *= unit->toInternalNoOffset(1.0);
    for (SimpleUnit const * const unit : m_denominator) factor /= unit->toInternalNoOffset(1.0);
    return factor * value;
}

double ComplexUnit::onToThisUnit(double value) const {
    if (isLoneUnit()) return m_numerator.front()->toThisUnit(value);
    double factor = 1.0;
    for (SimpleUnit const * const unit : m_numerator) factor *= unit->toThisUnitNoOffset(1.0);
    for (SimpleUnit const * const unit : m_denominator) factor /= unit->toThisUnitNoOffset(1.0);
    return factor * value;
}

std::wstring ComplexUnit::onToString() const {
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    auto const names = [&settings](List const & units) {
        std::wstring joined;
        for (SimpleUnit const * const unit : units) {
            if (!joined.empty()) joined += L'*';
            joined += unit->name(settings);
        }
        return joined.empty() ? std::wstring(L"1") : joined;
    };
    // Not by a stream, which would go on with a part of the text if memory ran out.
    return L'(' + names(m_numerator) + L") / (" + names(m_denominator) + L')';
}

void ComplexUnit::onAppendReconstruction(std::wstring & text, double value, EUnitDisplayMode mode,
                                         UnitDisplaySettings const & settings) const {
    // The special forms of lengths and angles belong to a unit that stands alone.
    if (isLoneUnit()) {
        m_numerator.front()->appendReconstruction(text, value, mode, settings);
        return;
    }
    bool const unitless = isUnitless();
    if (mode != UnitOnly)
        valueFormatter::get()->appendDecimal(text, unitless ? value : toThisUnit(value), settings);
    if (unitless || mode == ValueOnly) return;

    if (mode == ValueAndUnit) text += Tokens::get()->getString(Expressions::e_SPACE);
    UnitListText::append(text, *this, settings.compressUnits(),
                         [&settings](std::wstring & to, SimpleUnit const & unit) {
                             unit.appendDisplayString(to, settings);
                         });
}

} // namespace Vn::Units
