#include "Server/CommonData/Expressions/Expression.h"

#include "Server/CommonData/Expressions/NodeInternal.h"

namespace Vn::Expressions {

using Units::UnitDisplaySettings;

Expression::Expression(std::wstring text, Units::UnitContext const & context)
    : m_text(std::move(text)), m_context(context),
      m_node(Interface::get()->parse(m_text, m_context, m_result)) {}

std::optional<double> Expression::value() const {
    double value = 0.0;
    if (!m_node || !m_node->evaluate(value)) return std::nullopt;
    return value;
}

std::optional<Units::ComplexUnit> Expression::units() const {
    Units::ComplexUnit units;
    if (!m_node || !m_node->unitEvaluate(units, m_context)) return std::nullopt;
    return units;
}

std::wstring Expression::formatted(Units::EUnitDisplayMode mode) const {
    return formatted(mode, UnitDisplaySettings::get(), m_context);
}

std::wstring Expression::formatted(Units::EUnitDisplayMode mode,
                                   UnitDisplaySettings const & settings,
                                   Units::UnitContext const & display) const {
    if (!m_node) return {};
    if (Units::ComplexUnit const * const shown = display.expectedUnits()) {
        Units::ComplexUnit const * const own = m_node->units(m_context);
        if (!own || !shown->isDimensionallyEquivalent(own)) return {};
    }
    return m_node->formattedValue(mode, settings, display);
}

std::wstring Expression::rebuilt() const {
    return rebuilt(Units::ValueAndUnit, UnitDisplaySettings::standard());
}

std::wstring Expression::rebuilt(Units::EUnitDisplayMode mode,
                                 UnitDisplaySettings const & settings) const {
    return m_node ? m_node->reconstructString(mode, settings, nullptr) : std::wstring();
}

bool Expression::rebuiltReadsBack() const { return rebuiltReadsBack(rebuilt()); }

bool Expression::rebuiltReadsBack(std::wstring const & rebuilt) const {
    if (!m_node) return false;
    Expression const again(rebuilt, m_context);
    if (!again || again.value() != value() || again.rebuilt() != rebuilt) return false;
    std::optional<Units::ComplexUnit> const here = units();
    std::optional<Units::ComplexUnit> const there = again.units();
    if (!here || !there || !here->isDimensionallyEquivalent(&*there)) return false;
    // Units that cancel aren't written: "5 m * 2 kg/g" would be shown in other units from then on.
    UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
    return formatted(Units::ValueAndUnit, standard, m_context) ==
           again.formatted(Units::ValueAndUnit, standard, m_context);
}

std::wstring Expression::textToStore() const {
    std::wstring text = rebuilt();
    return rebuiltReadsBack(text) ? text : m_text;
}

Node * Expression::release() { return m_node.release(); }

} // namespace Vn::Expressions
