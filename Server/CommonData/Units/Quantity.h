// A number and its unit.
//
//   Quantity const length(2, "m");
//   Quantity const time = Quantity(0.5, "s");
//   Quantity const speed = length / time;            // 4 m / s
//   std::optional<double> const kmh = speed.value("km / hr");
//   bool const isFast = speed > Quantity(10, "km / hr");
//   std::cout << speed << '\n';                      // "4 m / s"
//
// Dimensions.  A sum, a difference and an order of quantities of different dimensions have no
// meaning.  Sums and differences throw std::invalid_argument, since the caller can ask
// isCompatible before; comparisons are false, and the order is unordered.
//
// Units.  A sum is in the unit of its left side.  A product has the units of both sides, and a unit
// that stands above and below the line goes: m / m is a plain number, m / cm keeps both and is
// unitless, with the factor 100.  No units are translated into others but where `in` says so.
//
// Offsets.  A temperature in C or F is a place on a scale and not an amount, so that arithmetic
// takes it in K, the internal unit, unless an amount is added to it: 20 C + 5 K is 25 C, 20 C - 15
// C is 5 K, and 2 * 20 C is 586.32 K.
//
// Exactness.  Two quantities are equal if their internal values are exactly: 1 in is 2.54 cm, but
// three times 0.1 m isn't 0.3 m, as with numbers.  isNear allows for rounding.
//
// A Quantity is a value of three words.  It has no lock, and threads may read one at a time when
// none changes it.

#ifndef VN_SERVER_COMMONDATA_UNITS_QUANTITY_H
#define VN_SERVER_COMMONDATA_UNITS_QUANTITY_H

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <version>

#ifdef __cpp_lib_format
#include <algorithm>
#include <format>
#endif

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units {

class UnitDisplaySettings;

class VN_COMMONDATA_API Quantity {
public:
    // Zero, and a number, without units.
    Quantity() noexcept = default;
    explicit Quantity(double value) noexcept : m_value(value) {}
    // So many of a unit, which must not be null.
    Quantity(double value, SimpleUnit const * unit);
    Quantity(double value, ComplexUnit const & unit);
    // So many of the unit that a text is, as UnitContext::parse reads it.  Throws
    // std::invalid_argument if it isn't one.
    Quantity(double value, std::wstring_view unit);
    Quantity(double value, std::string_view utf8Unit);

    // A number of internal units, in another unit of the same dimension.
    static Quantity ofInternal(double internal, ComplexUnit const & unit);
    // The value of an expression, such as "2 ft + 3 in"; none if it has none.
    static std::optional<Quantity> parse(std::wstring_view text);
    static std::optional<Quantity> parse(std::string_view utf8);

    // The number in the unit of the quantity.
    double value() const noexcept { return m_value; }
    // The unit; the empty one for a plain number.  It lasts as long as the quantity isn't changed.
    ComplexUnit const & unit() const noexcept { return m_unit ? *m_unit : ComplexUnit::none(); }
    // The number in internal units (cm, kg, s, K, ...), offset included.
    double internal() const { return m_unit ? m_unit->toInternal(m_value) : m_value; }

    // The number in another unit.  None if that is of another dimension, or the text isn't a unit.
    std::optional<double> value(ComplexUnit const & unit) const;
    std::optional<double> value(std::wstring_view unit) const;
    std::optional<double> value(std::string_view utf8Unit) const;
    // The same quantity in another unit, likewise.
    std::optional<Quantity> in(ComplexUnit const & unit) const;
    std::optional<Quantity> in(std::wstring_view unit) const;
    std::optional<Quantity> in(std::string_view utf8Unit) const;

    // Whether it has no dimension: its number is then internal().
    bool isUnitless() const { return !m_unit || m_unit->isUnitless(); }
    // Whether two quantities have the same dimension, so that they can be added and compared.
    bool isCompatible(Quantity const & other) const;
    // Whether they differ by no more than `relative` of the larger one; never for a NaN or for
    // different dimensions.
    bool isNear(Quantity const & other, double relative = 1e-9) const;

    // Arithmetic, as said at the top.  What overflows is infinite, and what is divided by zero
    // infinite or NaN, as with numbers.  A product of more factors than Limits::c_unitFactors
    // throws std::length_error; nothing has changed then.
    Quantity operator-() const;
    Quantity & operator+=(Quantity const & other);
    Quantity & operator-=(Quantity const & other);
    Quantity & operator*=(Quantity const & other);
    Quantity & operator/=(Quantity const & other);
    Quantity & operator*=(double number);
    Quantity & operator/=(double number);
    // A whole power, also a negative one; the power 0 is the number 1.
    Quantity power(int exponent) const;

    // Arithmetic, likewise.
    friend Quantity operator+(Quantity a, Quantity const & b) { return a += b; }
    friend Quantity operator-(Quantity a, Quantity const & b) { return a -= b; }
    friend Quantity operator*(Quantity a, Quantity const & b) { return a *= b; }
    friend Quantity operator/(Quantity a, Quantity const & b) { return a /= b; }
    friend Quantity operator*(Quantity a, double b) { return a *= b; }
    friend Quantity operator*(double a, Quantity b) { return b *= a; }
    friend Quantity operator/(Quantity a, double b) { return a /= b; }
    friend Quantity operator/(double a, Quantity const & b) { return Quantity(a) /= b; }

    // By internal values, where the dimensions are the same.
    friend bool operator==(Quantity const & a, Quantity const & b) { return a.isEqual(b); }
    friend std::partial_ordering operator<=>(Quantity const & a, Quantity const & b) {
        return a.compare(b);
    }
    // Equal for equal quantities.
    std::size_t hash() const;

    // The quantity in UTF-8, in the same words whatever the user's preferences are: "2.54 cm".  The
    // number has the fewest digits that read back, or so many decimals (0 to 100; others count as
    // the nearest of these).  `parse` reads it if internal() is finite: as the language computes in
    // internal units, it has no value for 1E307 km, nor for 1 m^155.
    std::string toString() const;
    std::string toString(int decimals) const;
    // The unit alone, as toString writes it: the abbreviations, the full names if an abbreviation
    // isn't a word of the language ("fl_oz"), or internal units if a name isn't one either
    // ("circular_mil").  Empty for what is unitless.
    std::string unitText() const;
    // The number that toString writes in front of it.
    double valueOfText() const;
    // For the user, by the preferences or other settings.
    std::wstring formatted(EUnitDisplayMode mode = ValueAndUnit) const;
    std::wstring formatted(EUnitDisplayMode mode, UnitDisplaySettings const & settings) const;

private:
    using SharedUnit = std::shared_ptr<ComplexUnit const>;

    Quantity(double value, SharedUnit unit) noexcept : m_value(value), m_unit(std::move(unit)) {}

    static SharedUnit shared(SimpleUnit const * unit);
    static SharedUnit shared(ComplexUnit const & unit);
    std::string withUnit(std::string number) const;
    bool hasOffset() const;
    void dropOffset();
    bool hasUnitOf(Quantity const & other) const;
    double amountIn(ComplexUnit const & unit) const;
    Quantity & add(Quantity const & other, double sign);
    Quantity & multiply(Quantity const & other, bool inverse);
    bool isEqual(Quantity const & other) const;
    std::partial_ordering compare(Quantity const & other) const;

    double m_value = 0.0;
    SharedUnit m_unit; // null for a plain number; its base form is valid
};

// Writes toString().
VN_COMMONDATA_API std::ostream & operator<<(std::ostream & out, Quantity const & quantity);

} // namespace Vn::Units

// Quantities as keys of unordered containers.
template <>
struct std::hash<Vn::Units::Quantity> {
    // Quantity::hash.
    std::size_t operator()(Vn::Units::Quantity const & quantity) const { return quantity.hash(); }
};

#ifdef __cpp_lib_format
// The number by the format of a double, then the unit: "{:.2f}" gives "2.54 cm".
template <>
struct std::formatter<Vn::Units::Quantity> : std::formatter<double> {
    template <class Context>
    auto format(Vn::Units::Quantity const & quantity, Context & context) const {
        auto out = std::formatter<double>::format(quantity.valueOfText(), context);
        std::string unit = quantity.unitText();
        if (!unit.empty()) unit.insert(0, 1, ' ');
        return std::copy(unit.begin(), unit.end(), out);
    }
};
#endif

#endif
