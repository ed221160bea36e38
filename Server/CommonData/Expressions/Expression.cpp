#include "Server/CommonData/Expressions/Expression.h"

#include <algorithm>
#include <limits>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/NodeInternal.h"

namespace Vn::Expressions {

using Units::UnitDisplaySettings;

Expression::Expression(std::wstring text, Units::UnitContext const & context)
    : m_text(std::move(text)), m_context(context),
      m_node(Interface::get()->parse(m_text, m_context, m_result)) {}

Expression::Expression(std::string_view utf8, Units::UnitContext const & context)
    : m_text(Text::fromUtf8(utf8)), m_context(context), m_brokenByte(Text::brokenUtf8(utf8)) {
    if (!m_brokenByte) {
        m_node.reset(Interface::get()->parse(m_text, m_context, m_result));
        return;
    }
    // Whatever the engine makes of U+FFFD, what was meant isn't known.
    auto const position = static_cast<unsigned int>(std::min<std::size_t>(
        Text::position16AtUtf8(utf8, *m_brokenByte), std::numeric_limits<unsigned int>::max() - 1));
    m_result.failedToParse(position);
    m_result.failure(EParseFailure::unusableCharacter, position, position + 1);
}

std::size_t Expression::byteAt(std::size_t position) const {
    return Text::utf8At16(m_text, position);
}

std::optional<double> Expression::value() const {
    double value = 0.0;
    if (!m_node || !m_node->evaluate(value)) return std::nullopt;
    return value;
}

std::optional<double> Expression::value(Units::ComplexUnit const & unit) const {
    std::optional<double> const internal = value();
    Units::ComplexUnit const * const own = internal ? m_node->units(m_context) : nullptr;
    if (!own || !unit.isDimensionallyEquivalent(own)) return std::nullopt;
    return unit.toThisUnit(*internal);
}

std::optional<double> Expression::value(std::wstring_view unit) const {
    std::optional<Units::ComplexUnit> const read = Units::UnitContext::parse(unit);
    return read ? value(*read) : std::nullopt;
}

std::optional<double> Expression::value(std::string_view utf8Unit) const {
    std::optional<Units::ComplexUnit> const read = Units::UnitContext::parse(utf8Unit);
    return read ? value(*read) : std::nullopt;
}

std::optional<Units::Quantity> Expression::quantity() const {
    std::optional<double> const internal = value();
    Units::ComplexUnit const * const own = internal ? m_node->units(m_context) : nullptr;
    if (!own) return std::nullopt;
    Units::ComplexUnit const * const expected = m_context.expectedUnits();
    bool const isExpected = expected && expected->isDimensionallyEquivalent(own);
    return Units::Quantity::ofInternal(*internal, isExpected ? *expected : *own);
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
