#ifndef VN_SERVER_COMMONDATA_COMPONENTS_IDEFAULTMATERIALPROVIDER_H
#define VN_SERVER_COMMONDATA_COMPONENTS_IDEFAULTMATERIALPROVIDER_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

// An entity that knows of which material the things below it are made unless they say so
// themselves.
class VN_COMMONDATA_API IDefaultMaterialProvider {
public:
    // The material; null if there is none.
    virtual StrongRef<Entity> defaultMaterial() const = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

    // Without state of its own.
    IDefaultMaterialProvider() = default;
    IDefaultMaterialProvider(IDefaultMaterialProvider const &) = default;
    IDefaultMaterialProvider & operator=(IDefaultMaterialProvider const &) = default;

protected:
    // Nobody owns an object by this interface.
    ~IDefaultMaterialProvider() = default;
};

} // namespace Vn::CommonData

#endif
