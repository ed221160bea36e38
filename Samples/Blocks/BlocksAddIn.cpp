// The add-in as the application sees it.

#include <memory>

#include "Platform/AddInMgr/Export.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/Base/InterfaceId.h"
#include "Samples/Blocks/TextCommands.h"

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

private:
    // The meta types are there as soon as the module is loaded; the commands come once the user's
    // language is known.
    void onLoaded() override { m_pCommands = std::make_unique<BlocksTextCommands>(); }
    void onUnloading(AddIn const *) override { m_pCommands.reset(); }

    std::unique_ptr<BlocksTextCommands> m_pCommands;
};

BlocksAddIn s_addIn;

} // namespace

} // namespace Vn::Blocks

// How the add-in manager comes by the add-in.
extern "C" VN_ADDIN_EXPORT Vn::IAddIn * _GetIAddIn() { return &Vn::Blocks::s_addIn; }
