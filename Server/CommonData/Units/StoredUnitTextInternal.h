// Units as documents keep them: by their full names, with the prefixes of the system's own language
// whatever the user's is, so that each copy of the system reads what another wrote.

#ifndef VN_SERVER_COMMONDATA_UNITS_STOREDUNITTEXTINTERNAL_H
#define VN_SERVER_COMMONDATA_UNITS_STOREDUNITTEXTINTERNAL_H

#include <string>
#include <string_view>

namespace Vn::Units {

class ComplexUnit;

namespace StoredUnitText {

// The text of a unit: "kilogram meter / second^2", "centimeter".  Powers are written as the user's
// settings say.  A unitless product has an empty text, and a magnitude without a prefix isn't told.
std::wstring write(ComplexUnit const & units);

// Reads what `write` writes, by exact names and in any language of the user.  False, with `out`
// untouched, for any other text.  The cost follows the length of the text.
bool read(std::wstring_view text, ComplexUnit & out);

} // namespace StoredUnitText

} // namespace Vn::Units

#endif
