#include "Platform/AddInMgr/IServerAddIn.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn {

UniqueString const * IServerAddIn::interfaceId() {
    static constinit InterfaceId s_id("Vn::IServerAddIn");
    return s_id.get();
}

UniqueString const * IServerAddIn::getInterfaceId() const { return interfaceId(); }

void * IServerAddIn::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IServerAddIn *>(this) : IAddIn::queryInterface(id);
}

} // namespace Vn
