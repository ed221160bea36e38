// The add-in as the application sees it.

#include "Platform/AddInMgr/Export.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/Base/InterfaceId.h"

namespace Vn::Blocks {

namespace {

class BlocksAddIn final : public IAddIn {
public:
    UniqueString const * getInterfaceId() const override {
        static constinit InterfaceId s_id("Vn::Blocks::BlocksAddIn");
        return s_id.get();
    }
    void * queryInterface(UniqueString const * id) const override {
        if (id == getInterfaceId()) return const_cast<BlocksAddIn *>(this);
        return IAddIn::queryInterface(id);
    }
};

BlocksAddIn s_addIn;

} // namespace

} // namespace Vn::Blocks

// How the add-in manager comes by the add-in.
extern "C" VN_ADDIN_EXPORT Vn::IAddIn * _GetIAddIn() { return &Vn::Blocks::s_addIn; }
