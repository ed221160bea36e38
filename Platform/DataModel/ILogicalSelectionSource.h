#ifndef VN_PLATFORM_DATAMODEL_ILOGICALSELECTIONSOURCE_H
#define VN_PLATFORM_DATAMODEL_ILOGICALSELECTIONSOURCE_H

#include <utility>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/LogicalSelection.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/Geometry/Tg.h"

namespace Vn {

// An object that a user can select.
class VN_DATAMODEL_API ILogicalSelectionSource {
public:
    virtual ~ILogicalSelectionSource();

    // The selection of this object, to which `path` leads.
    StrongRef<LogicalSelection> createLogicalSelection(ObjectPath const & path) {
        return onCreateLogicalSelection(path);
    }
    // Whether a pick of this object means the object itself, and not what stands above it.
    bool isFinalLogicalSelectionSource() const { return onIsFinalLogicalSelectionSource(); }
    // Adds to `leaves` the paths of what is selected with this object, to which `path` leads.
    void leafObjectPaths(ObjectPath const & path, std::vector<ObjectPath> & leaves) const {
        onLeafObjectPaths(path, leaves);
    }
    // Where a selection that no pointer has hit counts as hit.  `matrix` is the placement of the
    // object; `point` and `outMatrix` are set to the place of the hit within the object and to the
    // placement that holds there.  False, with both untouched, if there is no such place.
    bool provideNominalHitInfo(StrongRef<LogicalSelection> selection, TgMatrix3d const & matrix,
                               TgPoint3d & point, TgMatrix3d & outMatrix) const {
        return onProvideNominalHitInfo(std::move(selection), matrix, point, outMatrix);
    }

private:
    // The order of the virtual operations is binding.
    virtual StrongRef<LogicalSelection> onCreateLogicalSelection(ObjectPath const & path) = 0;
    // True by default.
    virtual bool onIsFinalLogicalSelectionSource() const;
    // `path` alone by default.
    virtual void onLeafObjectPaths(ObjectPath const & path, std::vector<ObjectPath> & leaves) const;
    virtual bool onProvideNominalHitInfo(StrongRef<LogicalSelection> selection,
                                         TgMatrix3d const & matrix, TgPoint3d & point,
                                         TgMatrix3d & outMatrix) const = 0;

public:
    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn

#endif
