// Lengths, points and directions as a person writes and reads them in a document:
//
//     2 in                   a length; a number alone is in the document's unit
//     (1 in, 0, 2 cm)        a point, or lengths along the axes
//     (1,5 in; 0; 2 cm)      the same for those who write decimals after a comma
//     (0, -1, 0)             a direction, of plain numbers
//
// Each number is an expression.

#ifndef VN_CONSOLE_DOCUMENTS_COORDINATES_H
#define VN_CONSOLE_DOCUMENTS_COORDINATES_H

#include <array>
#include <string>

#include <nlohmann/json.hpp>

#include "Platform/Base/RefCounted.h"
#include "Platform/Geometry/Tg.h"
#include "Server/CommonData/Units/UnitSystem.h"

namespace Vn::Console {

// Three components; of lengths in cm.
using Triple = std::array<double, 3>;

template <class Tg>
Triple tripleOf(Tg const & value) {
    return {value.x, value.y, value.z};
}
template <class Tg>
Tg fromTriple(Triple const & value) {
    return Tg(value[0], value[1], value[2]);
}

// In the unit that a system has for the lengths of the model, and as the user prefers numbers to be
// shown.  Without a system the unit is cm.
class Coordinates {
public:
    explicit Coordinates(StrongRef<Units::UnitSystem> const & system);

    // The texts of values, which may be NaN and infinite.
    std::wstring length(double value) const;
    std::wstring lengths(Triple const & value) const;
    static std::wstring direction(Triple const & value);

    // Reads a text.  The answer is empty, or says in one or several lines why it can't be read;
    // `value` is then left as it was.  What isn't finite is refused.
    std::wstring readLength(std::wstring const & text, double & value) const;
    std::wstring readLengths(std::wstring const & text, Triple & value) const;
    static std::wstring readDirection(std::wstring const & text, Triple & value);

private:
    Units::SimpleUnit const * const m_pUnit;
};

// A number as JSON, which has none for NaN and the infinities: they are texts, "nan".
nlohmann::ordered_json jsonOf(double value);
nlohmann::ordered_json jsonOf(Triple const & value);

} // namespace Vn::Console

#endif
