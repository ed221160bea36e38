// The sixteen fields of UnitDisplaySettings by name: one table that serves whatever shows, sets or
// stores them.
//
// Every value is a double here, whatever the record keeps: a flag is 0 or 1, and a choice is the
// number of its enumerator.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITDISPLAYSETTINGSFIELDS_H
#define VN_SERVER_COMMONDATA_UNITS_UNITDISPLAYSETTINGSFIELDS_H

#include <span>
#include <string_view>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

// What the values of a field are.
enum class ESettingsField {
    // A whole number, or a choice.
    Whole,
    // 0 or 1.
    Flag,
    // Any number.
    Number
};

// A row of the table.
struct UnitDisplaySettingsField {
    // The operation of the record that writes the field: "generalPrecision".  ASCII.
    char const * name;
    // What its values are.
    ESettingsField kind;
    // The least and the greatest value that it takes; infinite for a number without limits.
    double low;
    double high;
    // The value in a record.
    double (*get)(UnitDisplaySettings const & settings);
    // Writes a value, which isn't checked: of one outside the range what is stored isn't defined.
    // setUnitDisplaySettingsField() checks it.
    void (*set)(UnitDisplaySettings & settings, double value);
};

// All fields, in the order of the record.  The table lives to the end of the process.
VN_COMMONDATA_API std::span<UnitDisplaySettingsField const> unitDisplaySettingsFields();

// The field of that name, in its exact case; null if there is none.
VN_COMMONDATA_API UnitDisplaySettingsField const *
findUnitDisplaySettingsField(std::string_view name);

// Writes a value.  False, with the record as it was, if the field doesn't take the value: it is
// outside the range, isn't a number, or has decimals where only a number may.
VN_COMMONDATA_API bool setUnitDisplaySettingsField(UnitDisplaySettingsField const & field,
                                                   UnitDisplaySettings & settings, double value);

} // namespace Vn::Units

#endif
