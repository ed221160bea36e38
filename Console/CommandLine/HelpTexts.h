// The longer texts of the help, in the user's language.

#ifndef VN_CONSOLE_COMMANDLINE_HELPTEXTS_H
#define VN_CONSOLE_COMMANDLINE_HELPTEXTS_H

#include <string>

namespace Vn::Console {

// What the program is for, and at the end of its help examples and the exit status.
std::string descriptionHelp();
std::string examplesHelp();

// What stands at the end of the help of a command.
std::string evalHelp();
std::string batchHelp();
std::string documentHelp();
std::string optionsHelp();

} // namespace Vn::Console

#endif
