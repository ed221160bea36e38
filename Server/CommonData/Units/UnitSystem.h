// The document's choice of units, as a context sees it.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITSYSTEM_H
#define VN_SERVER_COMMONDATA_UNITS_UNITSYSTEM_H

#include "Platform/Base/RefCounted.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units {

class ComplexUnit;
class SimpleUnit;

class VN_COMMONDATA_API UnitSystem : public RefCounted {
public:
    // The unit in which the document shows values of the dimension of `units`.  False, with `out`
    // untouched, if it has none.
    bool findDefault(ComplexUnit const & units, ComplexUnit & out) const {
        return onFindDefault(units, out);
    }

    // The simple unit in which the document shows values of a kind; null if it has none.
    SimpleUnit const * findDefault(ESimpleUnitType type) const { return onFindDefault(type); }

private:
    virtual bool onFindDefault(ComplexUnit const & units, ComplexUnit & out) const = 0;
    virtual SimpleUnit const * onFindDefault(ESimpleUnitType type) const = 0;
};

} // namespace Vn::Units

#endif
