// A product and quotient of simple units: the unit of every value in flight.
//
// It holds two forms of itself.  The lists are as the user wrote them: `cm cm cm` stays three
// entries and `cm^4 / cm` stays as it is, and that is what is shown.  The base form, worked out
// when first asked for, is what comparisons look at: for each of the nine base quantities how
// often its internal unit remains above the line (positive) or below it (negative), and the factor
// from this unit to that product.
//
// There is no exponent in the lists: a power is a repeated entry, and fractional powers don't
// exist.  An offset counts only where a unit stands alone: in any longer list a `C` is a plain
// kelvin-sized factor.  In the factor of the base form the offset does count, so one `C` has the
// factor 274.16 and isn't equivalent to a `K`, although it has its dimension.
//
// A ComplexUnit is a value.  It has no lock, and asking for the base form the first time writes,
// so one object must not be asked from two threads at once unless its base form is valid already.

#ifndef VN_SERVER_COMMONDATA_UNITS_COMPLEXUNIT_H
#define VN_SERVER_COMMONDATA_UNITS_COMPLEXUNIT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>

#include <boost/container/small_vector.hpp>

#include "Server/CommonData/Units/Unit.h"

namespace Vn::Units {

class BaseUnit;
class SimpleUnit;

// Units in the order added, not owned: a view of a list, which must last.
class UnitSpan : public std::span<SimpleUnit const * const> {
public:
    // A list of its own, and the view without the operations below.
    using List = std::vector<SimpleUnit const *>;
    using Base = std::span<SimpleUnit const * const>;
    using Base::Base;

    // The unit at a place; throws std::out_of_range if there is none.
    SimpleUnit const * at(std::size_t place) const {
        if (place >= size()) throw std::out_of_range("there is no such unit");
        return (*this)[place];
    }
    // A list of its own.
    operator List() const { return List(begin(), end()); }
    // The same units in the same order.
    friend bool operator==(UnitSpan a, UnitSpan b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
};

class VN_COMMONDATA_API ComplexUnit final : public Unit {
public:
    // Without units: converts a value to itself.
    ComplexUnit();
    // One entry in the numerator.
    explicit ComplexUnit(SimpleUnit const * unit);
    // Copies the lists; the base form starts afresh.
    ComplexUnit(ComplexUnit const & other);
    ComplexUnit & operator=(ComplexUnit const & other);
    ~ComplexUnit() override;

    // Objects on the heap are made here and ended with destroy, which does nothing for null.
    static ComplexUnit * make();
    static ComplexUnit * make(SimpleUnit const * unit);
    static ComplexUnit * make(ComplexUnit const & other);
    static void destroy(ComplexUnit * units);
    // Ends this object, which must have been made by `make`.
    void destroy() { destroy(this); }

    // The shared unit of no entries.
    static ComplexUnit const & none();

    // Append entries, none of which may be null; the base form has to be worked out again.
    void addToNumerator(SimpleUnit const * unit);
    void addToDenominator(SimpleUnit const * unit);
    void addToNumerator(UnitSpan units);
    void addToDenominator(UnitSpan units);
    // Appends the lists of `other`, which must not be this object, to those of this.
    void multiplyBy(ComplexUnit const * other);
    // Appends the lists of `other` the other way around: a multiplication by its inverse.
    void divideBy(ComplexUnit const * other);
    // Swaps the lists.
    void invert();
    // One entry in the numerator and no other.
    void assign(SimpleUnit const * unit);
    // No entries.
    void clear();

    // The lists; they stay valid until this object changes.
    UnitSpan numerator() const { return {m_numerator.data(), m_numerator.size()}; }
    UnitSpan denominator() const { return {m_denominator.data(), m_denominator.size()}; }
    // The entries of both lists together.
    std::size_t factors() const { return m_numerator.size() + m_denominator.size(); }

    // Both lists are empty.  This speaks of the lists: `cm / cm` is not empty.
    bool isEmpty() const { return m_numerator.empty() && m_denominator.empty(); }

    // One entry in the numerator and none below; stores it in `unit` unless that is null.
    bool isSimpleUnit(SimpleUnit const ** unit) const;
    // The same, and it is a base unit: a `cm` is one, a `N` isn't.
    bool isBaseUnit(BaseUnit const ** unit) const;

    // The same units in the same order: `m s` isn't `s m`.
    bool isIdentical(ComplexUnit const * other) const;
    // Nothing remains in the base form: so of `cm / in`.
    bool isUnitless() const;
    // The base forms have the same units.
    bool isDimensionallyEquivalent(ComplexUnit const * other) const;
    // And essentially equal factors.
    bool isEquivalent(ComplexUnit const * other) const;

    // Gives `out` the units of the base form as its lists, in catalogue order.
    void produceBaseRepresentation(ComplexUnit & out) const;

    // Whether the base form has been worked out; forgets it; works it out, in any case or if need
    // be.
    bool isBaseValid() const { return m_baseValid; }
    void invalidateBase() const { m_baseValid = false; }
    void validateBase() const;
    void validateBaseIfNecessary() const {
        if (!m_baseValid) validateBase();
    }
    // The factor from this unit to its base form.
    double baseConversionFactor() const;

private:
    using List = boost::container::small_vector<SimpleUnit const *, 3>;

    static void * operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void * memory) { ::operator delete(memory); }

    double onToInternal(double value) const override;
    double onToThisUnit(double value) const override;
    void onAppendReconstruction(std::wstring & text, double value, EUnitDisplayMode mode,
                                UnitDisplaySettings const & settings) const override;
    EUnitType onUnitType() const override { return ComplexUnitKind; }
    bool onIsSimple() const override { return false; }
    std::wstring onToString() const override;

    bool isLoneUnit() const { return m_numerator.size() == 1 && m_denominator.empty(); }

    List m_numerator;
    List m_denominator;
    mutable std::array<int, 9> m_basePowers{}; // by ESimpleUnitType of the base kind
    mutable double m_baseFactor = 0.0;
    mutable bool m_baseValid = false;
};

} // namespace Vn::Units

#endif
