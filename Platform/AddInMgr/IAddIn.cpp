#include "Platform/AddInMgr/IAddIn.h"

#include <typeinfo>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"

namespace Vn {

IAddIn::~IAddIn() = default;

std::wstring IAddIn::toString() const { return Text::fromUtf8(OS::className(typeid(*this))); }

void IAddIn::onLoaded() {}
void IAddIn::onUnloading(AddIn const *) {}

UniqueString const * IAddIn::interfaceId() {
    static constinit InterfaceId s_id("Vn::IAddIn");
    return s_id.get();
}

UniqueString const * IAddIn::getInterfaceId() const { return interfaceId(); }

void * IAddIn::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IAddIn *>(this) : nullptr;
}

} // namespace Vn
