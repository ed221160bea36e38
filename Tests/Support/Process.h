// The console as a user meets it: a process with arguments, streams and an exit status.

#ifndef VN_TESTS_SUPPORT_PROCESS_H
#define VN_TESTS_SUPPORT_PROCESS_H

#include <string>
#include <vector>

namespace Vn::Console::Tests {

struct Outcome {
    int status = -1; // the exit status, or 128 and the number of the signal that ended the process
    std::string out;
    std::string err;
};

// Runs a program to its end with `input` as its standard input.
Outcome runProgram(std::string const & program, std::vector<std::string> const & arguments,
                   std::string const & input = {});

// Runs the console.
Outcome runConsole(std::vector<std::string> const & arguments, std::string const & input = {});

// Runs a line of the shell, in which "$VNCONSOLE" is the console.  Windows has no such shell.
Outcome runShell(std::string const & line, std::string const & input = {});

#ifdef _WIN32
// Runs the console, and closes its output once the first bytes of it have been read.
Outcome runConsoleUnread(std::vector<std::string> const & arguments, std::string const & input);
#endif

} // namespace Vn::Console::Tests

#endif
