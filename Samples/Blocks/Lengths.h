// Lengths as people type them: expressions in the units of the document.
//
// A length is read once, in the units that the document has then.  What is kept is the length in cm
// and a text that means this length whatever the units of the document are later: "2" typed in a
// document in inches is kept as "2 in".

#ifndef VN_SAMPLES_BLOCKS_LENGTHS_H
#define VN_SAMPLES_BLOCKS_LENGTHS_H

#include <cstddef>
#include <string>

#include "Platform/Base/Status.h"
#include "Platform/DataModel/Asset.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitSystem.h"

namespace Vn::Blocks {

// No length may be greater, in cm: at 100 km a float still tells 1 cm from 2.
inline constexpr double c_longest = 1e7;

// What a length is for: a size is above 0, a coordinate may be anything.
enum class ELength { Size, Coordinate };

// A length, and the text to keep of it.
struct Length {
    double value = 0;  // cm
    std::wstring text; // means the same in all units
};

// Which piece of a text that was typed is refused, and why.
struct Fault {
    std::wstring text;        // as it was typed
    std::size_t position = 0; // where the piece begins, in 16-bit characters from 0
    std::wstring reason;      // for the user, in the user's language

    // The text, or a piece of a long one, and below it a caret at the place: two lines.
    std::wstring excerpt() const;
};

// The unit system that is active in a document; null if there is none.
StrongRef<Units::UnitSystem> unitSystemOf(Asset const & asset);
// How lengths are read and shown in a document: in the unit that its system has for the lengths of
// models, else for lengths; without a system in cm.
Units::UnitContext lengthContext(Asset const & asset);
// A length in cm as a text in these units.
std::wstring shownLength(double value, Units::UnitContext const & context);

// Reads a length.  Refused with StatusInvalidArgument, and `length` stays as it was: a text that
// isn't an expression, one of another dimension, and a value that isn't finite, that is above
// c_longest or that the kind doesn't allow.  `fault` tells more, and may be null.
Status readLength(std::wstring const & typed, ELength kind, Units::UnitContext const & context,
                  Length & length, Fault * fault);

} // namespace Vn::Blocks

#endif
