// The library's checks of itself.

#ifndef VN_CONSOLE_COMMANDLINE_SELFTESTCOMMAND_H
#define VN_CONSOLE_COMMANDLINE_SELFTESTCOMMAND_H

#include <iosfwd>
#include <string>

namespace Vn::Console {

// Runs the self-checks of a group, or all for an empty name, and reports each.
int runSelfTest(std::string const & group, std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
