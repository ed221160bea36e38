// The concrete simple units: UnitMeter, UnitInch, UnitNewton and their peers, one class for each
// row of UnitCatalogue.inc.  Each class X has the statics of its row (X::c_name, c_abbreviation,
// c_symbol, c_conversion, c_offset), X::staticIdentifier(), and
//
//   X::get()                  for a unit without magnitudes: its one object;
//   X::get(double magnitude)  for a unit that takes prefixes: the object of that magnitude, made
//                             on first use; get(1.0) is the catalogue object.

#ifndef VN_SERVER_COMMONDATA_UNITS_SIMPLEUNITS_H
#define VN_SERVER_COMMONDATA_UNITS_SIMPLEUNITS_H

#include "Server/CommonData/Units/BaseUnit.h"
#include "Server/CommonData/Units/CompositeUnit.h"

namespace Vn::Units {

// The rows of the catalogue, from 0.
enum class ECatalogueRow : unsigned {
#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes) unit,
#include "Server/CommonData/Units/UnitCatalogue.inc"
    Count
};

// The identifier of a row: a narrow string with the name of the class.  The identifiers lie in
// catalogue order.
VN_COMMONDATA_API std::string const * catalogueIdentifier(ECatalogueRow row);

// The object of a class and a magnitude, by the registry.
VN_COMMONDATA_API SimpleUnit const * findOrCloneUnit(std::string const * identifier,
                                                     double magnitude);

// What the concrete classes share: everything comes from the statics of the class.
template <class ConcreteUnit, class KindUnit, ECatalogueRow Row, bool SupportsMagnitude>
class CatalogueUnit : public KindUnit {
public:
    // The one object of a class without magnitudes.
    static SimpleUnit const * get() requires(!SupportsMagnitude) {
        return &ConcreteUnit::instance();
    }

    // The object of that magnitude, made on first use; nobody owns it.
    static SimpleUnit const * get(double magnitude) requires SupportsMagnitude {
        return findOrCloneUnit(staticIdentifier(), magnitude);
    }

    // What identifier() of the objects answers.
    static std::string const * staticIdentifier() { return catalogueIdentifier(Row); }

protected:
    using KindUnit::KindUnit;

private:
    std::string const * onIdentifier() const final { return staticIdentifier(); }
    double onInternalConversionFactor() const final { return ConcreteUnit::c_conversion; }
    double onInternalConversionOffset() const final { return ConcreteUnit::c_offset; }
    std::wstring const & onName() const final { return ConcreteUnit::c_name; }
    std::wstring const & onAbbreviation() const final { return ConcreteUnit::c_abbreviation; }
    std::wstring const & onSymbol() const final { return ConcreteUnit::c_symbol; }
    bool onSupportsMagnitude() const final { return SupportsMagnitude; }

    SimpleUnit const * onClone([[maybe_unused]] double magnitude) const final {
        if constexpr (SupportsMagnitude)
            return new ConcreteUnit(static_cast<ConcreteUnit const &>(*this), magnitude);
        else
            return nullptr;
    }
};

#define VN_MAGNITUDES_yes true
#define VN_MAGNITUDES_no false
#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes)                \
    class VN_COMMONDATA_API unit final                                                             \
        : public CatalogueUnit<unit, kind##Unit, ECatalogueRow::unit,                              \
                               VN_MAGNITUDES_##magnitudes> {                                       \
    public:                                                                                        \
        static std::wstring const c_name;                                                          \
        static std::wstring const c_abbreviation;                                                  \
        static std::wstring const c_symbol;                                                        \
        static constexpr double c_conversion = factor;                                             \
        static constexpr double c_offset = offset;                                                 \
                                                                                                   \
    private:                                                                                       \
        using Base =                                                                               \
            CatalogueUnit<unit, kind##Unit, ECatalogueRow::unit, VN_MAGNITUDES_##magnitudes>;      \
        friend Base;                                                                               \
        friend class Catalogue;                                                                    \
        unit() = default;                                                                          \
        unit(unit const &, double magnitude) : Base(magnitude) {}                                  \
        static unit const & instance();                                                            \
    };
#include "Server/CommonData/Units/UnitCatalogue.inc"
#undef VN_MAGNITUDES_yes
#undef VN_MAGNITUDES_no

} // namespace Vn::Units

#endif
