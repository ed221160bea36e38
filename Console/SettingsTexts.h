// What the console says of the display settings.

#ifndef VN_CONSOLE_SETTINGSTEXTS_H
#define VN_CONSOLE_SETTINGSTEXTS_H

#include <string>
#include <vector>

#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

namespace Vn::Console {

// What a field decides, in a few words.
std::wstring settingMeaning(Units::UnitDisplaySettingsField const & field);

// Sets a field.  Returns an empty text, or what is wrong with a value that isn't NaN.
std::wstring setSetting(Units::UnitDisplaySettingsField const & field,
                        Units::UnitDisplaySettings & settings, double value);

// The field by its name in any case; null if there is none.
Units::UnitDisplaySettingsField const * findSetting(std::wstring const & name);

// What to tell of a name that no field has: the nearest one, or else `otherwise`, which is a
// message with a place for the name.
std::wstring noSuchSetting(std::wstring const & name, wchar_t const * otherwise);

// Sets a field to a value as it is typed: a number, or a word such as "true", "off" or "yes".
// Where the decimal mark of `settings` is the comma, a number has that or a full stop, unless the
// full stop can part thousands: "10.000" is refused.  Returns an empty text, or what is wrong with
// it.
std::wstring readSetting(Units::UnitDisplaySettingsField const & field, std::wstring const & text,
                         Units::UnitDisplaySettings & settings);

// The values that a flag or a choice takes, as they are typed; none for other numbers.
std::vector<std::wstring> settingWords(Units::UnitDisplaySettingsField const & field);

// The value of a field as it is typed.
std::wstring settingValue(Units::UnitDisplaySettingsField const & field,
                          Units::UnitDisplaySettings const & settings);

} // namespace Vn::Console

#endif
