// The sixteen display settings by name: one table that serves every way to set or show them.

#ifndef VN_CONSOLE_SETTINGSFIELDS_H
#define VN_CONSOLE_SETTINGSFIELDS_H

#include <span>
#include <string>
#include <string_view>

#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

struct SettingsField {
    enum class Kind { Whole, Flag, Number };

    char const * name;
    Kind kind;
    double low; // the range of a whole number
    double high;
    char const * meaning;
    double (*get)(Units::UnitDisplaySettings const &); // a flag is 0 or 1
    void (*set)(Units::UnitDisplaySettings &, double);
};

// In the order of the record.
std::span<SettingsField const> settingsFields();

// Null if there is no such field.
SettingsField const * findSettingsField(std::string_view name);

// Sets a field.  Returns an empty text, or what is wrong with the value.
std::string setSettingsField(SettingsField const & field, Units::UnitDisplaySettings & settings,
                             double value);

} // namespace Vn::Console

#endif
