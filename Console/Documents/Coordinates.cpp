#include "Console/Documents/Coordinates.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

#include "Console/Failure.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/MassProperties/MassProperties.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

using CommonData::MassProperties;
using Expressions::Expression;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

constexpr wchar_t const * c_axes[] = {L"x", L"y", L"z"};

std::wstring textOf(Units::Unit const & unit, double value) {
    if (std::isnan(value)) return L"nan"; // whatever its sign
    if (!std::isfinite(value)) return shortestNumber(value);
    // Too large to be told in the unit.
    if (!std::isfinite(unit.toThisUnit(value))) return shortestNumber(value) + L" cm";
    return unit.reconstructString(value, Units::ValueAndUnit, UnitDisplaySettings::get());
}

// Where decimals stand after a comma, another sign has to stand between the numbers.
std::wstring textOf(Units::Unit const & unit, Triple const & value) {
    wchar_t const * const between =
        UnitDisplaySettings::get().isDecimalPointFullStop() ? L", " : L"; ";
    std::wstring text = L"(" + textOf(unit, value[0]);
    for (std::size_t i = 1; i < value.size(); ++i) text += between + textOf(unit, value[i]);
    return text + L')';
}

std::wstring read(std::wstring const & text, UnitContext const & context, double & value) {
    Expression const expression(text, context);
    if (!expression) {
        std::wstring lines = Text::fromUtf8(failureLines(expression));
        if (!lines.empty()) lines.pop_back(); // its line end
        return lines;
    }
    std::optional<double> const found = expression.value();
    if (!found) return message(L"%1% has no value", inQuotes(text));
    if (!std::isfinite(*found)) return message(L"%1% isn't finite", inQuotes(text));
    value = *found;
    return {};
}

// The texts between the brackets around a text, at the semicolons that stand in no further
// brackets, or at the commas if there are none of these.  Empty if there are no brackets around it.
std::vector<std::wstring> parts(std::wstring_view text) {
    text = trimmed(text);
    if (text.size() < 2 || text.front() != L'(' || text.back() != L')') return {};
    text = text.substr(1, text.size() - 2);
    std::vector<std::wstring> found;
    for (wchar_t const separator : {L';', L','}) {
        found.assign(1, {});
        int depth = 0;
        for (wchar_t const c : text) {
            depth += c == L'(' ? 1 : c == L')' ? -1 : 0;
            if (depth < 0) return {}; // the brackets at both ends don't belong together
            if (c == separator && depth == 0)
                found.emplace_back();
            else
                found.back() += c;
        }
        if (found.size() > 1) break;
    }
    return found;
}

std::wstring read(std::wstring const & text, UnitContext const & context, wchar_t const * whyNot,
                  wchar_t const * example, Triple & value) {
    std::vector<std::wstring> const all = parts(text);
    if (all.size() != value.size()) {
        std::wstring const why = message(whyNot, inQuotes(text), example);
        return all.size() > value.size() ? message(L"%1%, or with semicolons between numbers that "
                                                   L"have decimals after a comma",
                                                   why)
                                         : why;
    }
    Triple found{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::wstring const why = read(std::wstring(trimmed(all[i])), context, found[i]);
        if (!why.empty()) return std::wstring(c_axes[i]) + L": " + why;
    }
    value = found;
    return {};
}

} // namespace

Coordinates::Coordinates(StrongRef<Units::UnitSystem> const & system)
    : m_pUnit(MassProperties::lengthUnit(system)) {}

std::wstring Coordinates::length(double value) const { return textOf(*m_pUnit, value); }

std::wstring Coordinates::lengths(Triple const & value) const { return textOf(*m_pUnit, value); }

std::wstring Coordinates::direction(Triple const & value) {
    return textOf(Units::ComplexUnit::none(), value);
}

std::wstring Coordinates::readLength(std::wstring const & text, double & value) const {
    return read(text, UnitContext(m_pUnit), value);
}

std::wstring Coordinates::readLengths(std::wstring const & text, Triple & value) const {
    return read(text, UnitContext(m_pUnit), tr(L"%1% isn't a point: write it as %2%"),
                L"(1 in, 0, 2 cm)", value);
}

std::wstring Coordinates::readDirection(std::wstring const & text, Triple & value) {
    return read(text, UnitContext(&Units::ComplexUnit::none()),
                tr(L"%1% isn't a direction: write it as %2%"), L"(0, 0, 1)", value);
}

nlohmann::ordered_json jsonOf(double value) {
    if (std::isfinite(value)) return value;
    return Text::toUtf8(shortestNumber(value));
}

nlohmann::ordered_json jsonOf(Triple const & value) {
    return nlohmann::ordered_json::array({jsonOf(value[0]), jsonOf(value[1]), jsonOf(value[2])});
}

} // namespace Vn::Console
