// vnconsole add-ins: what was loaded, and what wasn't.

#ifndef VN_CONSOLE_HOST_ADDINSCOMMAND_H
#define VN_CONSOLE_HOST_ADDINSCOMMAND_H

#include <iosfwd>

namespace Vn::Console {

// Lists the records of the add-in manager in the order in which they are loaded, as a table or as
// JSON Lines.  The answer is an exit status: whether all of them are loaded, and there are some.
int runAddIns(bool json, std::ostream & out);

} // namespace Vn::Console

#endif
