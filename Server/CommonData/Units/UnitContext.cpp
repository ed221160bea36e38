#include "Server/CommonData/Units/UnitContext.h"

#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Units {

// The expected units are complete before other threads can see the context: a copy of units starts
// without its base form.

UnitContext::UnitContext(UnitContext const & other)
    : m_rActiveUnitSystem(other.m_rActiveUnitSystem), m_expectedUnits(other.m_expectedUnits),
      m_bHasExpectedUnits(other.m_bHasExpectedUnits) {
    if (m_bHasExpectedUnits) m_expectedUnits.validateBase();
}

UnitContext & UnitContext::operator=(UnitContext const & other) {
    m_rActiveUnitSystem = other.m_rActiveUnitSystem;
    m_expectedUnits = other.m_expectedUnits;
    m_bHasExpectedUnits = other.m_bHasExpectedUnits;
    if (m_bHasExpectedUnits) m_expectedUnits.validateBase();
    return *this;
}

UnitContext::UnitContext(SimpleUnit const * units)
    : m_expectedUnits(units), m_bHasExpectedUnits(true) {
    m_expectedUnits.validateBase();
}

UnitContext::UnitContext(ComplexUnit const * units)
    : m_expectedUnits(*units), m_bHasExpectedUnits(true) {
    m_expectedUnits.validateBase();
}

UnitContext::UnitContext(std::wstring const & text)
    : m_bHasExpectedUnits(UnitSystemChoice::parse(text, m_expectedUnits)) {
    if (m_bHasExpectedUnits) m_expectedUnits.validateBase();
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system) : m_rActiveUnitSystem(system) {}

ComplexUnit * UnitContext::cloneExpectedUnits() const { return ComplexUnit::make(m_expectedUnits); }

SimpleUnit const * UnitContext::findSimpleExpectedUnits() const {
    SimpleUnit const * unit = nullptr;
    return m_expectedUnits.isSimpleUnit(&unit) ? unit : nullptr;
}

bool UnitContext::findDefault(ComplexUnit const & units, ComplexUnit & out) const {
    if (m_bHasExpectedUnits && m_expectedUnits.isDimensionallyEquivalent(&units)) {
        out = m_expectedUnits;
        return true;
    }
    return m_rActiveUnitSystem && m_rActiveUnitSystem->findDefault(units, out);
}

SimpleUnit const * UnitContext::findDefault(ESimpleUnitType type) const {
    if (m_bHasExpectedUnits) {
        SimpleUnit const * const unit = findSimpleExpectedUnits();
        if (unit && unit->simpleUnitType() == type) return unit;
    }
    return m_rActiveUnitSystem ? m_rActiveUnitSystem->findDefault(type) : nullptr;
}

} // namespace Vn::Units
