// Numbers as text, in the four forms of the display settings: decimal or scientific; a whole number
// and a fraction; feet and inches; degrees, minutes and seconds.
//
// The values are in the unit that is shown, not internal.  Nothing here fails: a value that isn't
// finite is written "INF", "-INF" or "NAN" in every form, a negative count of decimals counts as
// none, and a printed field ends after 511 characters.  The text doesn't depend on any locale.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_VALUEFORMATTER_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_VALUEFORMATTER_H

#include <cstddef>
#include <string>

#include "Server/CommonData/Export.h"

namespace Vn::Units {
class UnitDisplaySettings;
}

namespace Vn::Expressions {

class VN_COMMONDATA_API valueFormatter {
public:
    // The one formatter of the process.
    static valueFormatter const * get();

    // Each form as a text of its own.
    std::wstring formatDecimal(double value, Units::UnitDisplaySettings const & settings) const;
    std::wstring formatFractional(double value) const;
    std::wstring formatArchitectural(double feet,
                                     Units::UnitDisplaySettings const & settings) const;
    std::wstring formatDegMinSec(double degrees, Units::UnitDisplaySettings const & settings) const;
    std::wstring formatExponent(short exponent) const;

    // Each form after what `text` holds already.
    void appendDecimal(std::wstring & text, double value,
                       Units::UnitDisplaySettings const & settings) const;
    void appendFractional(std::wstring & text, double value) const;
    void appendArchitectural(std::wstring & text, double feet,
                             Units::UnitDisplaySettings const & settings) const;
    void appendDegMinSec(std::wstring & text, double degrees,
                         Units::UnitDisplaySettings const & settings) const;
    // "^" and the number.
    void appendExponent(std::wstring & text, std::size_t exponent) const;

    // The prefix for a magnitude, in full or short; empty for 1.0 and for a magnitude that has
    // none.  Magnitudes compare exactly.
    std::wstring const & magnitudeString(double magnitude, bool abbreviated) const;

    // Appends the nearest fraction of 64ths, in lowest terms, after a space if `text` isn't empty;
    // nothing for a fraction that rounds to zero.
    void appendFraction(std::wstring & text, double fraction) const;

    // Whether the fraction is nearer to one than to 63/64.
    bool roundsToWhole(double fraction) const;

    // By repeated squaring; a negative exponent gives 1 over the power.
    double integerPower(double base, int exponent) const;

private:
    valueFormatter() = default;
};

} // namespace Vn::Expressions

#endif
