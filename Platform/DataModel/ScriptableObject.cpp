#include "Platform/DataModel/ScriptableObject.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn {

IScriptableObject::~IScriptableObject() = default;

UniqueString const * IScriptableObject::interfaceId() {
    static constinit InterfaceId s_id("Vn::IScriptableObject");
    return s_id.get();
}

UniqueString const * IScriptableObject::getInterfaceId() const { return interfaceId(); }

void * IScriptableObject::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IScriptableObject *>(this) : nullptr;
}

IScriptableRootObject::~IScriptableRootObject() = default;

UniqueString const * IScriptableRootObject::interfaceId() {
    static constinit InterfaceId s_id("Vn::IScriptableRootObject");
    return s_id.get();
}

UniqueString const * IScriptableRootObject::getInterfaceId() const { return interfaceId(); }

void * IScriptableRootObject::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IScriptableRootObject *>(this) : nullptr;
}

} // namespace Vn
