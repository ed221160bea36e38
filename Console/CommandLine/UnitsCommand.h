// The catalogue of units, for people.

#ifndef VN_CONSOLE_COMMANDLINE_UNITSCOMMAND_H
#define VN_CONSOLE_COMMANDLINE_UNITSCOMMAND_H

#include <iosfwd>
#include <string>

namespace Vn::Console {

// Lists the units whose name, abbreviation, symbol or kind contains `pattern` in any case, as a
// table or as JSON Lines.
int runUnits(std::wstring const & pattern, bool json, std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
