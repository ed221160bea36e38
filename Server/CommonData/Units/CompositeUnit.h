// A named unit of a derived quantity (a newton, a litre, a mile per hour), and the 22 kind
// classes, each of which says for which product of internal base units it stands.

#ifndef VN_SERVER_COMMONDATA_UNITS_COMPOSITEUNIT_H
#define VN_SERVER_COMMONDATA_UNITS_COMPOSITEUNIT_H

#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnit.h"

namespace Vn::Units {

class VN_COMMONDATA_API CompositeUnit : public SimpleUnit {
public:
    // What the kind stands for: shared, complete, living to the end of the process.
    ComplexUnit const * internalComplexUnit() const { return onInternalComplexUnit(); }

protected:
    using SimpleUnit::SimpleUnit;

private:
    EUnitType onUnitType() const final { return CompositeUnitKind; }
    std::wstring onToString() const final;

    virtual ComplexUnit const * onInternalComplexUnit() const = 0;
};

// SolidAngleUnit, SpeedUnit and their peers.
#define VN_COMPOSITE_KIND(number, name, numerator, denominator)                                    \
    class VN_COMMONDATA_API name##Unit : public CompositeUnit {                                    \
    public:                                                                                        \
        static ComplexUnit const * staticInternalComplexUnit();                                    \
                                                                                                   \
    protected:                                                                                     \
        using CompositeUnit::CompositeUnit;                                                        \
                                                                                                   \
    private:                                                                                       \
        ESimpleUnitType onSimpleUnitType() const final { return UnitType##name; }                  \
        ComplexUnit const * onInternalComplexUnit() const final {                                  \
            return staticInternalComplexUnit();                                                    \
        }                                                                                          \
    };
#include "Server/CommonData/Units/UnitKinds.inc"

} // namespace Vn::Units

#endif
