// A unit: an immutable rule that turns a number expressed in it into the system's internal number
// and back.  All arithmetic happens on internal numbers (cm, kg, s, K, A, mol, cd, rad, dollar); a
// unit is asked only where text is read and where a value is shown.
//
//   Unit
//     SimpleUnit           one named unit: a metre, with or without a prefix
//       BaseUnit           of one of the nine base quantities
//       CompositeUnit      short for a product of base units: a newton
//     ComplexUnit          a product and quotient of simple units: kg m / s s
//
// Simple units are shared objects that live to the end of the process; nobody owns one, and two of
// them are the same unit exactly if they are the same object.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNIT_H
#define VN_SERVER_COMMONDATA_UNITS_UNIT_H

#include <string>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units {

class UnitDisplaySettings;

class VN_COMMONDATA_API Unit {
public:
    virtual ~Unit() = default;

    // `value` of this unit as an internal number, offset included (20 C is 293.16).
    double toInternal(double value) const { return onToInternal(value); }

    // The internal number `value` in this unit.
    double toThisUnit(double value) const { return onToThisUnit(value); }

    // The text of the internal number `value` in this unit, or of the unit alone, by `mode` and
    // `settings`.
    std::wstring reconstructString(double value, EUnitDisplayMode mode,
                                   UnitDisplaySettings const & settings) const;

    // The same, appended to `text`.
    void appendReconstruction(std::wstring & text, double value, EUnitDisplayMode mode,
                              UnitDisplaySettings const & settings) const {
        onAppendReconstruction(text, value, mode, settings);
    }

    // Which of the three kinds of unit this is.
    EUnitType unitType() const { return onUnitType(); }

    // Whether this is a SimpleUnit.
    bool isSimple() const { return onIsSimple(); }

    // A line for diagnostics, not for users.
    std::wstring toString() const { return onToString(); }

protected:
    Unit() = default;
    Unit(Unit const &) = default;
    Unit & operator=(Unit const &) = default;

private:
    virtual double onToInternal(double value) const = 0;
    virtual double onToThisUnit(double value) const = 0;
    virtual void onAppendReconstruction(std::wstring & text, double value, EUnitDisplayMode mode,
                                        UnitDisplaySettings const & settings) const = 0;
    virtual EUnitType onUnitType() const = 0;
    virtual bool onIsSimple() const = 0;
    virtual std::wstring onToString() const = 0;
};

} // namespace Vn::Units

#endif
