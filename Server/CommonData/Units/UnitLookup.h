// The simple units that there are, and the ways to find one.  Any thread may call all of it.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITLOOKUP_H
#define VN_SERVER_COMMONDATA_UNITS_UNITLOOKUP_H

#include <string_view>
#include <vector>

#include "Server/CommonData/Export.h"

namespace Vn::Units {

class ComplexUnit;
class SimpleUnit;

// Every unit, with those of other magnitudes that have been asked for, ordered by class in
// catalogue order and by magnitude.  Nobody owns them, and they live to the end of the process.
VN_COMMONDATA_API std::vector<SimpleUnit const *> listUnits();

// The unit whose name, abbreviation or symbol is the longest tail of `text`; `prefix`, if given,
// receives what stands in front of it, which isn't judged.  Null if no tail is a unit.
VN_COMMONDATA_API SimpleUnit const * findUnit(std::wstring_view text,
                                              std::wstring_view * prefix = nullptr);

// The only unit that `text` spells in any case, if it takes no prefixes; else null.
VN_COMMONDATA_API SimpleUnit const * findUnitInAnyCase(std::wstring_view text);

// The first unit of the catalogue with the dimension of `units`; null if there is none.
VN_COMMONDATA_API SimpleUnit const * findEquivalentUnit(ComplexUnit const & units);

} // namespace Vn::Units

#endif
