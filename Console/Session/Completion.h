// What the tab key offers in a session.

#ifndef VN_CONSOLE_SESSION_COMPLETION_H
#define VN_CONSOLE_SESSION_COMPLETION_H

#include <string_view>

#include "Console/Terminal/LineReader.h"

namespace Vn::Console {

// The words that can stand where the line ends: at its beginning a command of the session or a text
// command; after "set" a setting and its values, after "language" a tag, after "help" a topic,
// after "open" a file; after a "/" or "--" the flags of the command; and anywhere what an
// expression can hold. The case must be as typed, unless nothing begins so.
Completion completeSessionLine(std::wstring_view line);

} // namespace Vn::Console

#endif
