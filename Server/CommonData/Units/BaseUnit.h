// A unit of one of the nine base quantities, and the nine kind classes.

#ifndef VN_SERVER_COMMONDATA_UNITS_BASEUNIT_H
#define VN_SERVER_COMMONDATA_UNITS_BASEUNIT_H

#include "Server/CommonData/Units/SimpleUnit.h"

namespace Vn::Units {

class VN_COMMONDATA_API BaseUnit : public SimpleUnit {
public:
    // The internal unit of the kind: what its conversion factors are relative to.
    BaseUnit const * internalBaseUnit() const { return onInternalBaseUnit(); }

protected:
    using SimpleUnit::SimpleUnit;

private:
    EUnitType onUnitType() const final { return BaseUnitKind; }
    std::wstring onToString() const final;

    virtual BaseUnit const * onInternalBaseUnit() const = 0;
};

// LengthUnit, MassUnit and their peers.
#define VN_BASE_KIND(number, name, internal)                                                       \
    class VN_COMMONDATA_API name##Unit : public BaseUnit {                                         \
    public:                                                                                        \
        static BaseUnit const * staticInternalBaseUnit();                                          \
                                                                                                   \
    protected:                                                                                     \
        using BaseUnit::BaseUnit;                                                                  \
                                                                                                   \
    private:                                                                                       \
        ESimpleUnitType onSimpleUnitType() const final { return UnitType##name; }                  \
        BaseUnit const * onInternalBaseUnit() const final { return staticInternalBaseUnit(); }     \
    };
#include "Server/CommonData/Units/UnitKinds.inc"

} // namespace Vn::Units

#endif
