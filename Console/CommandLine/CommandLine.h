// The command line of vnconsole.

#ifndef VN_CONSOLE_COMMANDLINE_COMMANDLINE_H
#define VN_CONSOLE_COMMANDLINE_COMMANDLINE_H

#include <iosfwd>
#include <string>
#include <vector>

namespace Vn::Console {

// Does what the arguments say, without the name of the program in front of them, and returns the
// exit status.  To be called once; the program has settled what readEarlyOptions finds in the
// arguments.
int runCommandLine(std::vector<std::string> const & arguments, std::istream & in,
                   std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
