// The command line of vnconsole.

#ifndef VN_CONSOLE_COMMANDLINE_COMMANDLINE_H
#define VN_CONSOLE_COMMANDLINE_COMMANDLINE_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Vn::Console {

struct EarlyOptions;

// Does what the arguments say, without the name of the program in front of them, and returns the
// exit status.  To be called once; the program has settled what readEarlyOptions finds in the
// arguments.
int runCommandLine(std::vector<std::string> const & arguments, std::istream & in,
                   std::ostream & out, std::ostream & err);

// What the arguments say of the early options once all of them are understood; none if they can't
// be.
std::optional<EarlyOptions> understoodOptions(std::vector<std::string> const & arguments);

} // namespace Vn::Console

#endif
