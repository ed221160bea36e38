// The host itself.  It knows neither units nor documents: what it can do comes with its add-ins.

#ifndef VN_CONSOLE_HOST_PROGRAM_H
#define VN_CONSOLE_HOST_PROGRAM_H

#include <iosfwd>
#include <string>
#include <vector>

namespace Vn::Console {

// Loads the add-ins that are configured, and has the one with the commands do what the arguments
// say, which stand without the name of the program.  The answer is the exit status; what is missing
// is told on `err`.  To be called once.
int runProgram(std::vector<std::string> const & arguments, std::istream & in, std::ostream & out,
               std::ostream & err);

} // namespace Vn::Console

#endif
