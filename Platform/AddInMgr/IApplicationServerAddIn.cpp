#include "Platform/AddInMgr/IApplicationServerAddIn.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn {

UniqueString const * IApplicationServerAddIn::interfaceId() {
    static constinit InterfaceId s_id("Vn::IApplicationServerAddIn");
    return s_id.get();
}

UniqueString const * IApplicationServerAddIn::getInterfaceId() const { return interfaceId(); }

void * IApplicationServerAddIn::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IApplicationServerAddIn *>(this)
                               : IServerAddIn::queryInterface(id);
}

} // namespace Vn
