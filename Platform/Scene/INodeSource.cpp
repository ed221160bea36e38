#include "Platform/Scene/INodeSource.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::Scene {

INodeSource::~INodeSource() = default;

UniqueString const * INodeSource::interfaceId() {
    static constinit InterfaceId s_id("Vn::Scene::INodeSource");
    return s_id.get();
}

UniqueString const * INodeSource::getInterfaceId() const { return interfaceId(); }

void * INodeSource::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<INodeSource *>(this) : nullptr;
}

} // namespace Vn::Scene
