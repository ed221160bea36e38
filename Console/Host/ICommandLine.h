#ifndef VN_CONSOLE_HOST_ICOMMANDLINE_H
#define VN_CONSOLE_HOST_ICOMMANDLINE_H

#include <iosfwd>
#include <string>
#include <vector>

#include "Platform/Base/UniqueString.h"

namespace Vn::Console {

// What the program asks of the add-in that has its commands.  The object is the add-in's.
class ICommandLine {
public:
    // How the program finds it, the same pointer at every call.
    static UniqueString const * interfaceId() {
        return UniqueString::find("Vn::Console::ICommandLine", true);
    }

    // Does what the arguments say, without the name of the program in front of them, and returns
    // the exit status.  To be called once, with what readEarlyOptions finds in the arguments
    // settled for the process.
    virtual int run(std::vector<std::string> const & arguments, std::istream & in,
                    std::ostream & out, std::ostream & err) const = 0;

protected:
    ~ICommandLine() = default;
};

} // namespace Vn::Console

#endif
