// Units as a person writes and reads them.

#ifndef VN_CONSOLE_UNITTEXTS_H
#define VN_CONSOLE_UNITTEXTS_H

#include <optional>
#include <string>

#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

// The context that expects the unit `text`; an empty text expects a result without units.  None if
// the text isn't a unit.
std::optional<Units::UnitContext> unitContext(std::wstring const & text);

// The units as one types them: "m / s^2".  Empty for no units.
std::wstring unitText(Units::ComplexUnit const & units,
                      Units::UnitDisplaySettings const & settings);

// The internal units in which a value of the dimension of `units` is given.  Empty for no units.
std::wstring internalUnitText(Units::ComplexUnit const & units,
                              Units::UnitDisplaySettings const & settings);

// The units as one types them, clipped where they are long, with their kind where that has a name:
// "m / s (Speed)".  "no unit" for none.
std::wstring namedUnits(Units::ComplexUnit const & units,
                        Units::UnitDisplaySettings const & settings);

// The same as a part of a sentence: "in m / s (Speed)", "without units".
std::wstring describeUnits(Units::ComplexUnit const & units,
                           Units::UnitDisplaySettings const & settings);

// A number for people: the fewest digits that read back to it, with the decimal mark of the
// settings; without these, of the settings that all values are shown by.
std::wstring shownNumber(double value, Units::UnitDisplaySettings const & settings);
std::wstring shownNumber(double value);

// What stands between such numbers: a comma, or a semicolon where decimals stand after a comma.
wchar_t const * listSeparator();

} // namespace Vn::Console

#endif
