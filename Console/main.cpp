#include <cerrno>
#include <exception>
#include <iostream>
#include <new>
#include <system_error>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Host/Program.h"
#include "Console/Messages.h"
#include "Console/Terminal/Terminal.h"
#include "Platform/Base/OS.h"

// The host program: all text in and out is UTF-8.
int main(int argc, char * argv[]) {
    using namespace Vn::Console;

    Vn::OS::Utf8Streams const streams;
    StandardOutput output;
    std::ostream out(&output);
    int status = ExitBadInput;
    try {
        std::ios::sync_with_stdio(false);
        status = runProgram(Vn::OS::arguments(argc, argv), std::cin, out, std::cerr);
    } catch (std::bad_alloc const &) {
        std::cerr << "vnconsole: out of memory\n";
    } catch (std::exception const & exception) {
        std::cerr << "vnconsole: "
                  << messageUtf8(L"it ended unexpectedly: %1%",
                                 Vn::Text::fromUtf8(exception.what()))
                  << '\n';
    }
    out.flush();
    if (output.error() == 0) return status;
    // Nobody reads any more: there is nobody to tell.
    if (output.error() != EPIPE)
        std::cerr << "vnconsole: "
                  << messageUtf8(L"can't write the output: %1%",
                                 Vn::Text::fromUtf8(
                                     Vn::OS::errorText({output.error(), std::generic_category()})))
                  << '\n';
    return ExitBadInput;
}
