#include "Console/Equivalents.h"

#include <algorithm>
#include <cmath>

#include "Console/UnitTexts.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Console {

using Expressions::EToken;
using Expressions::Expression;
using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// Of the prefixes people use: powers of a thousand, and the centimetre's.
struct Prefix {
    EToken token;
    bool forLengthsOnly;
};
constexpr Prefix c_prefixes[] = {
    {Expressions::e_NANO_ABBR, false},  {Expressions::e_MICRO_ABBR, false},
    {Expressions::e_MILLI_ABBR, false}, {Expressions::e_CENTI_ABBR, true},
    {Expressions::e_KILO_ABBR, false},  {Expressions::e_MEGA_ABBR, false},
    {Expressions::e_GIGA_ABBR, false},
};

class Equivalents {
public:
    Equivalents(Expression const & expression, UnitDisplaySettings const & settings)
        : m_rExpression(expression), m_rSettings(settings), m_value(*expression.value()) {}

    std::vector<Equivalent> take() {
        ComplexUnit const own = m_rExpression.units().value_or(ComplexUnit::none());
        add(own);
        if (own.isUnitless()) return std::move(m_all);
        for (SimpleUnit const * const unit : Units::listUnits()) {
            // The others are these with a prefix.
            if (unit->magnitude() != 1.0) continue;
            if (!unit->asComplexUnit().isDimensionallyEquivalent(&own)) continue;
            if (unit->supportsMagnitude()) addWithPrefixes(*unit);
            add(unit->asComplexUnit());
        }
        ComplexUnit internal;
        own.produceBaseRepresentation(internal);
        add(internal);
        return std::move(m_all);
    }

private:
    void add(ComplexUnit const & units) {
        std::wstring const text = unitText(units, m_rSettings);
        bool const isKnown = std::any_of(
            m_all.begin(), m_all.end(), [&](Equivalent const & each) { return each.unit == text; });
        if (isKnown) return;
        SimpleUnit const * unit = nullptr;
        if (!units.isSimpleUnit(&unit)) unit = nullptr;
        m_all.push_back(
            {text, unit ? unit->simpleUnitTypeName() : std::wstring(), units.toThisUnit(m_value),
             m_rExpression.formatted(Units::ValueAndUnit, m_rSettings, UnitContext(&units))});
    }

    void addWithPrefixes(SimpleUnit const & unit) {
        Expressions::Tokens const & tokens = *Expressions::Tokens::get();
        bool const isLength = unit.simpleUnitType() == Units::UnitTypeLength;
        for (Prefix const & prefix : c_prefixes) {
            if (prefix.forLengthsOnly && !isLength) continue;
            // A unit with a prefix comes to be by being asked for, and stays.
            double const number =
                std::fabs(unit.toThisUnit(m_value) / tokens.getMagnitudeValue(prefix.token));
            if (number < 1.0 || number >= 1000.0) continue;
            UnitContext const context(tokens.getString(prefix.token) +
                                      unit.abbreviation(UnitDisplaySettings::standard()));
            SimpleUnit const * const known = context.findSimpleExpectedUnits();
            if (known && known->identifier() == unit.identifier()) add(known->asComplexUnit());
        }
    }

    Expression const & m_rExpression;
    UnitDisplaySettings const & m_rSettings;
    double const m_value;
    std::vector<Equivalent> m_all;
};

} // namespace

std::vector<Equivalent> equivalentsOf(Expression const & expression,
                                      UnitDisplaySettings const & settings) {
    if (!expression.value()) return {};
    return Equivalents(expression, settings).take();
}

} // namespace Vn::Console
