// Units from a text.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITSYSTEMCHOICE_H
#define VN_SERVER_COMMONDATA_UNITS_UNITSYSTEMCHOICE_H

#include <string>

#include "Server/CommonData/Export.h"

namespace Vn::Units {

class ComplexUnit;

class VN_COMMONDATA_API UnitSystemChoice {
public:
    // Reads a unit such as "kg m / s s" into `out`.  There is no grammar of units alone: "1 " is
    // put in front of the text, and what the expression engine then reads as one quantity is a
    // unit.  False, with `out` untouched, if it reads nothing.  An empty text is an empty unit.
    static bool parse(std::wstring const & text, ComplexUnit & out);
};

} // namespace Vn::Units

#endif
