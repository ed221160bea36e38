// What the console says of the display settings.

#ifndef VN_CONSOLE_SETTINGSTEXTS_H
#define VN_CONSOLE_SETTINGSTEXTS_H

#include <string>

#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

namespace Vn::Console {

// What a field decides, in a few words.
std::wstring settingMeaning(Units::UnitDisplaySettingsField const & field);

// Sets a field.  Returns an empty text, or what is wrong with a value that isn't NaN.
std::string setSetting(Units::UnitDisplaySettingsField const & field,
                       Units::UnitDisplaySettings & settings, double value);

} // namespace Vn::Console

#endif
