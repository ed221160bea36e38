// What the tab key offers where a command takes a file.

#ifndef VN_CONSOLE_SESSION_FILENAMES_H
#define VN_CONSOLE_SESSION_FILENAMES_H

#include <string_view>

#include "Console/Terminal/LineReader.h"

namespace Vn::Console {

// The files and directories that begin as `typed` does, which is what stands of the parameter, from
// the working directory or absolute; it may begin with a quote.  A "~" in front is the user's
// directory, which the candidates name in full.  Where a path has to stand in
// quotes, because it begins with a "/" or has blanks, the candidates do.  Hidden names are offered
// once their full stop is typed; names that can't be typed aren't.
Completion completeFileName(std::wstring_view typed);

} // namespace Vn::Console

#endif
