// The enumerations of the unit model.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITTYPES_H
#define VN_SERVER_COMMONDATA_UNITS_UNITTYPES_H

namespace Vn::Units {

// What a unit is made of.
enum EUnitType {
    BaseUnitKind = 0,      // one of the nine base quantities
    CompositeUnitKind = 1, // a named unit that stands for a product of base units
    ComplexUnitKind = 2    // a product and quotient of simple units
};

// The quantity that a simple unit measures.  0 to 8 are base kinds, 9 to 30 composite kinds.
// Documents keep the number, and may hold one that is none of these.
enum ESimpleUnitType : unsigned {
#define VN_BASE_KIND(number, name, internal) UnitType##name = number,
#define VN_COMPOSITE_KIND(number, name, numerator, denominator) UnitType##name = number,
#include "Server/CommonData/Units/UnitKinds.inc"
};

// How many of them are base kinds, and how many there are in all.
inline constexpr int c_baseKinds = 9;
inline constexpr int c_simpleUnitTypes = 31;

// Which parts of a quantity are written.
enum EUnitDisplayMode { ValueAndUnit = 0, ValueOnly = 1, UnitOnly = 2 };

} // namespace Vn::Units

#endif
