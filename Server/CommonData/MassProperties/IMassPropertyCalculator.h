#ifndef VN_SERVER_COMMONDATA_MASSPROPERTIES_IMASSPROPERTYCALCULATOR_H
#define VN_SERVER_COMMONDATA_MASSPROPERTIES_IMASSPROPERTYCALCULATOR_H

#include "Platform/Base/UniqueString.h"
#include "Platform/Types/PhysicalMaterial.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

// What a component passes along while it walks what stands in it.  Nothing here looks into it.
class IComponentTraversalContext;

class MassProperties;

// An entity that knows the volume, the area, the mass and the density of what it stands for.
//
// `context` and `flag` are those of whoever asked, and have whatever meaning the components give
// them.
class VN_COMMONDATA_API IMassPropertyCalculator {
public:
    // The order of the virtual operations is binding.

    virtual ~IMassPropertyCalculator();

    // Writes those of the four quantities whose pointer isn't null, in internal units (cm^3, cm^2,
    // kg, kg/cm^3).  What `record` overrides is up to the calculator, and so is deriving one
    // quantity from the others.
    virtual void calculate(MassProperties const * record, double * volume, double * area,
                           double * mass, double * density, IComponentTraversalContext * context,
                           bool flag) = 0;
    // The material that everything measured is made of; null if it isn't one.
    virtual PhysicalMaterial const * commonPhysicalMaterial(IComponentTraversalContext * context,
                                                            bool flag) = 0;
    // Whether there is anything to measure.  For hosts: nothing here asks.
    virtual bool isMeasurable() const = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
    static UniqueString const * interfaceId();

    // Without state of its own.
    IMassPropertyCalculator() = default;
    IMassPropertyCalculator(IMassPropertyCalculator const &) = default;
    IMassPropertyCalculator & operator=(IMassPropertyCalculator const &) = default;
};

} // namespace Vn::CommonData

#endif
