// The text commands of the process, by name.

#ifndef VN_CONSOLE_SESSION_TEXTCOMMANDS_H
#define VN_CONSOLE_SESSION_TEXTCOMMANDS_H

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Vn {
class TextCommand;
}

namespace Vn::Console {

// Runs a text command; its status is the answer.  One word is a whole line ("Units.List /Verbose");
// of several words the first is the command, and the others are its parameters and flags.  Without
// words all commands are listed.
int runTextCommand(std::vector<std::wstring> const & words, std::ostream & out, std::ostream & err);

// What a command does and is given: in the language if it is one of the console, else as the
// command has it.
std::wstring descriptionOf(TextCommand const & command);

// Whether a line that begins with `word` is meant as a text command: it has the name of one, or
// that of a subject area and a full stop.
bool namesTextCommand(std::wstring_view word);

// The names of all commands that aren't hidden, as in "Units.List", and the aliases of those that
// have one.
std::vector<std::wstring> textCommandNames();

} // namespace Vn::Console

#endif
