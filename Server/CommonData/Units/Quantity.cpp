#include "Server/CommonData/Units/Quantity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Platform/Base/Numeric.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

namespace {

template <class Characters>
ComplexUnit unitOf(std::basic_string_view<Characters> text) {
    std::optional<ComplexUnit> const unit = UnitContext::parse(text);
    if (!unit) throw std::invalid_argument("the text isn't a unit");
    return *unit;
}

using Factors = std::vector<SimpleUnit const *>;

Factors joined(UnitSpan first, UnitSpan second) {
    Factors factors(first.begin(), first.end());
    factors.insert(factors.end(), second.begin(), second.end());
    return factors;
}

// Takes those of `common`, which is in order, out of a list, one for one; the others keep their
// order.
void take(Factors const & common, Factors & from) {
    std::vector<bool> isTaken(common.size());
    auto const isOne = [&](SimpleUnit const * unit) {
        auto const [first, last] =
            std::equal_range(common.begin(), common.end(), unit, std::less<>());
        for (auto i = first; i != last; ++i) {
            auto const place = static_cast<std::size_t>(i - common.begin());
            if (isTaken[place]) continue;
            isTaken[place] = true;
            return true;
        }
        return false;
    };
    from.erase(std::remove_if(from.begin(), from.end(), isOne), from.end());
}

// Takes what is in both lists out of both.
void cancel(Factors & above, Factors & below) {
    Factors a = above;
    Factors b = below;
    std::sort(a.begin(), a.end(), std::less<>());
    std::sort(b.begin(), b.end(), std::less<>());
    Factors common;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common),
                          std::less<>());
    if (common.empty()) return;
    take(common, above);
    take(common, below);
}

std::string number(double value, std::optional<int> decimals) {
    if (std::isnan(value)) return "NAN";
    if (std::isinf(value)) return value < 0.0 ? "-INF" : "INF";
    std::array<char, 512> digits; // 309 before the point, and 100 after it
    char * const end = digits.data() + digits.size();
    std::to_chars_result const written =
        decimals ? std::to_chars(digits.data(), end, value, std::chars_format::fixed,
                                 std::clamp(*decimals, 0, 100))
                 : std::to_chars(digits.data(), end, value);
    return std::string(digits.data(), written.ptr);
}

std::size_t mixed(std::size_t hash, std::size_t value) {
    return hash ^
           (value + static_cast<std::size_t>(0x9E3779B97F4A7C15U) + (hash << 6) + (hash >> 2));
}

} // namespace

// --- Units -------------------------------------------------------------------------------------

// That of a simple unit lasts to the end of the process and isn't counted.
Quantity::SharedUnit Quantity::shared(SimpleUnit const * unit) {
    return SharedUnit(SharedUnit(), &unit->asComplexUnit());
}

Quantity::SharedUnit Quantity::shared(ComplexUnit const & unit) {
    SimpleUnit const * simple = nullptr;
    if (unit.isEmpty()) return nullptr;
    if (unit.isSimpleUnit(&simple)) return shared(simple);
    auto made = std::make_shared<ComplexUnit>(unit);
    made->validateBase();
    return made;
}

Quantity::Quantity(double value, SimpleUnit const * unit) : Quantity(value, shared(unit)) {}
Quantity::Quantity(double value, ComplexUnit const & unit) : Quantity(value, shared(unit)) {}
Quantity::Quantity(double value, std::wstring_view unit) : Quantity(value, unitOf(unit)) {}
Quantity::Quantity(double value, std::string_view utf8Unit) : Quantity(value, unitOf(utf8Unit)) {}

Quantity Quantity::ofInternal(double internal, ComplexUnit const & unit) {
    return Quantity(unit.toThisUnit(internal), unit);
}

std::optional<Quantity> Quantity::parse(std::wstring_view text) {
    return Expressions::Expression(std::wstring(text)).quantity();
}

std::optional<Quantity> Quantity::parse(std::string_view utf8) {
    return Expressions::Expression(utf8).quantity();
}

std::optional<double> Quantity::value(ComplexUnit const & unit) const {
    if (!unit.isDimensionallyEquivalent(&this->unit())) return std::nullopt;
    return unit.isIdentical(&this->unit()) ? m_value : unit.toThisUnit(internal());
}

std::optional<double> Quantity::value(std::wstring_view unit) const {
    std::optional<ComplexUnit> const read = UnitContext::parse(unit);
    return read ? value(*read) : std::nullopt;
}

std::optional<double> Quantity::value(std::string_view utf8Unit) const {
    std::optional<ComplexUnit> const read = UnitContext::parse(utf8Unit);
    return read ? value(*read) : std::nullopt;
}

std::optional<Quantity> Quantity::in(ComplexUnit const & unit) const {
    std::optional<double> const number = value(unit);
    if (!number) return std::nullopt;
    return Quantity(*number, unit);
}

std::optional<Quantity> Quantity::in(std::wstring_view unit) const {
    std::optional<ComplexUnit> const read = UnitContext::parse(unit);
    return read ? in(*read) : std::nullopt;
}

std::optional<Quantity> Quantity::in(std::string_view utf8Unit) const {
    std::optional<ComplexUnit> const read = UnitContext::parse(utf8Unit);
    return read ? in(*read) : std::nullopt;
}

bool Quantity::isCompatible(Quantity const & other) const {
    return m_unit == other.m_unit || unit().isDimensionallyEquivalent(&other.unit());
}

// --- Arithmetic --------------------------------------------------------------------------------

bool Quantity::hasOffset() const {
    SimpleUnit const * simple = nullptr;
    return m_unit && m_unit->isSimpleUnit(&simple) && simple->internalConversionOffset() != 0.0;
}

void Quantity::dropOffset() {
    if (!hasOffset()) return;
    ComplexUnit base;
    m_unit->produceBaseRepresentation(base);
    *this = Quantity(internal(), base);
}

bool Quantity::hasUnitOf(Quantity const & other) const {
    return m_unit == other.m_unit || unit().isIdentical(&other.unit());
}

// As a difference, without an offset, in a unit.
double Quantity::amountIn(ComplexUnit const & unit) const {
    SimpleUnit const * simple = nullptr;
    return unit.isSimpleUnit(&simple) ? simple->toThisUnitNoOffset(internal())
                                      : unit.toThisUnit(internal());
}

Quantity & Quantity::add(Quantity const & other, double sign) {
    if (!isCompatible(other))
        throw std::invalid_argument("quantities of different dimensions are neither added nor "
                                    "subtracted");
    if (!other.hasOffset()) {
        m_value += sign * (hasUnitOf(other) ? other.m_value : other.amountIn(unit()));
        return *this;
    }
    // Two places on one scale: their distance is exact as far as the scale is.
    bool const isDistance = sign < 0.0 && hasUnitOf(other);
    SimpleUnit const * simple = nullptr;
    other.unit().isSimpleUnit(&simple);
    double const distance = simple->toInternalNoOffset(m_value - other.m_value);
    Quantity right = other;
    right.dropOffset();
    dropOffset();
    if (isDistance) return *this = Quantity(distance, right.m_unit);
    return add(right, sign);
}

Quantity & Quantity::multiply(Quantity const & other, bool inverse) {
    Quantity right = other;
    Quantity left = *this;
    right.dropOffset();
    left.dropOffset();
    left.m_value = inverse ? left.m_value / right.m_value : left.m_value * right.m_value;
    if (right.m_unit && (left.m_unit || inverse)) {
        ComplexUnit const & l = left.unit();
        ComplexUnit const & r = right.unit();
        Factors above = joined(l.numerator(), inverse ? r.denominator() : r.numerator());
        Factors below = joined(l.denominator(), inverse ? r.numerator() : r.denominator());
        cancel(above, below);
        if (above.size() + below.size() > Limits::c_unitFactors)
            throw std::length_error("the unit has too many factors");
        ComplexUnit product;
        product.addToNumerator(UnitSpan(above.data(), above.size()));
        product.addToDenominator(UnitSpan(below.data(), below.size()));
        left.m_unit = shared(product);
    } else if (right.m_unit) {
        left.m_unit = right.m_unit;
    }
    return *this = std::move(left);
}

Quantity Quantity::operator-() const { return Quantity(*this) *= -1.0; }
Quantity & Quantity::operator+=(Quantity const & other) { return add(other, 1.0); }
Quantity & Quantity::operator-=(Quantity const & other) { return add(other, -1.0); }
Quantity & Quantity::operator*=(Quantity const & other) { return multiply(other, false); }
Quantity & Quantity::operator/=(Quantity const & other) { return multiply(other, true); }

Quantity & Quantity::operator*=(double number) {
    dropOffset();
    m_value *= number;
    return *this;
}

Quantity & Quantity::operator/=(double number) {
    dropOffset();
    m_value /= number;
    return *this;
}

Quantity Quantity::power(int exponent) const {
    Quantity base = *this;
    base.dropOffset();
    auto const times = static_cast<std::size_t>(std::abs(static_cast<long long>(exponent)));
    std::size_t const factors = base.unit().factors();
    if (factors > 0 && times > Limits::c_unitFactors / factors)
        throw std::length_error("the unit has too many factors");
    Quantity result(Numeric::power(base.m_value, exponent));
    ComplexUnit product;
    for (std::size_t i = 0; factors > 0 && i < times; ++i)
        exponent > 0 ? product.multiplyBy(&base.unit()) : product.divideBy(&base.unit());
    result.m_unit = shared(product);
    return result;
}

// --- Comparison --------------------------------------------------------------------------------

bool Quantity::isNear(Quantity const & other, double relative) const {
    if (!isCompatible(other)) return false;
    double const a = internal();
    double const b = other.internal();
    if (!std::isfinite(a) || !std::isfinite(b)) return a == b;
    return std::fabs(a - b) <= relative * std::max(std::fabs(a), std::fabs(b));
}

bool Quantity::isEqual(Quantity const & other) const {
    return isCompatible(other) && internal() == other.internal();
}

std::partial_ordering Quantity::compare(Quantity const & other) const {
    return isCompatible(other) ? internal() <=> other.internal() : std::partial_ordering::unordered;
}

std::size_t Quantity::hash() const {
    double const value = internal();
    std::size_t hash = std::hash<double>()(value == 0.0 ? 0.0 : value); // -0 is 0
    if (!m_unit) return hash;
    ComplexUnit base;
    m_unit->produceBaseRepresentation(base);
    std::hash<SimpleUnit const *> const of;
    for (SimpleUnit const * const unit : base.numerator()) hash = mixed(hash, of(unit));
    for (SimpleUnit const * const unit : base.denominator()) hash = mixed(hash, ~of(unit));
    return hash;
}

// --- Text --------------------------------------------------------------------------------------

namespace {

// Whether all units of a product are words that can be typed, as the settings show them.
bool areWords(ComplexUnit const & unit, UnitDisplaySettings const & settings) {
    auto const isWord = [&](SimpleUnit const * each) {
        return !Expressions::Tokens::get()->invalidNameCharsInStr(
            settings.shouldDisplayAbbreviation() ? each->abbreviation(settings)
                                                 : each->name(settings),
            true);
    };
    return std::all_of(unit.numerator().begin(), unit.numerator().end(), isWord) &&
           std::all_of(unit.denominator().begin(), unit.denominator().end(), isWord);
}

// The factory settings, but for names in full where an abbreviation can't be typed; none if a name
// can't either.
std::optional<UnitDisplaySettings> settingsToType(ComplexUnit const & unit) {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    if (areWords(unit, settings)) return settings;
    settings.displayAbbreviated(false);
    if (areWords(unit, settings)) return settings;
    return std::nullopt;
}

} // namespace

std::string Quantity::unitText() const {
    if (isUnitless()) return {};
    if (auto const settings = settingsToType(unit()))
        return Text::toUtf8(unit().reconstructString(0.0, UnitOnly, *settings));
    ComplexUnit base;
    unit().produceBaseRepresentation(base);
    return Text::toUtf8(base.reconstructString(0.0, UnitOnly, UnitDisplaySettings::standard()));
}

double Quantity::valueOfText() const {
    return isUnitless() || !settingsToType(unit()) ? internal() : m_value;
}

std::string Quantity::withUnit(std::string number) const {
    std::string const unit = unitText();
    return unit.empty() ? number : number + ' ' + unit;
}

std::string Quantity::toString() const { return withUnit(number(valueOfText(), std::nullopt)); }

std::string Quantity::toString(int decimals) const {
    return withUnit(number(valueOfText(), decimals));
}

std::wstring Quantity::formatted(EUnitDisplayMode mode) const {
    return formatted(mode, UnitDisplaySettings::get());
}

std::wstring Quantity::formatted(EUnitDisplayMode mode,
                                 UnitDisplaySettings const & settings) const {
    return unit().reconstructString(internal(), mode, settings);
}

std::ostream & operator<<(std::ostream & out, Quantity const & quantity) {
    return out << quantity.toString();
}

} // namespace Vn::Units
