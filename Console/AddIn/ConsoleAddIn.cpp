// The add-in that has the commands of the console.

#include "Console/CommandLine/CommandLine.h"
#include "Console/Host/ICommandLine.h"
#include "Platform/AddInMgr/Export.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/Base/InterfaceId.h"

namespace Vn::Console {

namespace {

class ConsoleAddIn final : public IAddIn, public ICommandLine {
public:
    UniqueString const * getInterfaceId() const override {
        static constinit InterfaceId s_id("Vn::Console::ConsoleAddIn");
        return s_id.get();
    }
    void * queryInterface(UniqueString const * id) const override {
        if (id == getInterfaceId()) return const_cast<ConsoleAddIn *>(this);
        if (id == ICommandLine::interfaceId())
            return static_cast<ICommandLine *>(const_cast<ConsoleAddIn *>(this));
        return IAddIn::queryInterface(id);
    }

    int run(std::vector<std::string> const & arguments, std::istream & in, std::ostream & out,
            std::ostream & err) const override {
        return runCommandLine(arguments, in, out, err);
    }
};

ConsoleAddIn s_addIn;

} // namespace

} // namespace Vn::Console

// How the add-in manager comes by the add-in.
extern "C" VN_ADDIN_EXPORT Vn::IAddIn * _GetIAddIn() { return &Vn::Console::s_addIn; }
