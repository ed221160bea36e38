// Readings of an expression that people rarely mean: it has a value, but perhaps another than the
// person who typed it wants.
//
//   Expression const length(text, context);
//   for (ReadingNote const & note : readingNotes(length)) tell(note.text);
//
// A note stands beside the value, never instead of it.  Nothing is computed until it is asked for.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_READINGNOTES_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_READINGNOTES_H

#include <cstddef>
#include <string>
#include <vector>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

// What was read.  The numbers stay as they are; new readings are added at the end.
enum class EReading : unsigned char {
    // "1,500" is one and a half.  Not told to those whose decimals stand after a comma.
    decimalComma = 0,
    // "1-1/2" is a half.
    subtraction = 1,
    // "12 / 3 / 2" is 12 over three halves.
    fractionOfOperator = 2,
    // "2*3^2" is 36, "-10^2" is 100, "3/2^2" is 2.25.
    powerOfAll = 3,
    // "100 C - 20 C", "2 * 20 C": the operands count from absolute zero.
    temperaturePoints = 4,
    // "20 deg C" is a product.
    angleAndTemperature = 5,
    // "5 kilos" are kiloseconds, "mm as in" holds attoseconds.
    rareUnit = 6,
    // "1e400" is the largest number there is.
    largestNumber = 7,
    // "cos(PI)" is the cosine of 3.14 degrees.
    piInDegrees = 8,
    // "1.500" is one and a half.  Told only to those whose decimals stand after a comma.
    decimalPoint = 9,
    // "1/3 in" is a third per inch.
    unitOfDivisor = 10
};

// A note on one reading.
struct ReadingNote {
    // What was read.
    EReading reading;
    // Where the piece begins and ends in the text, in 16-bit characters from 0.
    std::size_t start;
    std::size_t end;
    // What to tell the user, in their language: "\"1-1/2\" is a subtraction; for a number with a
    // fraction write 1 1/2".
    std::wstring text;
};

// The notes on an expression: the first of each reading, in the order of the text.  None without a
// tree, and none on a text of more than 1,000 characters.  `settings` tell which mark of decimals
// the user is used to.
VN_COMMONDATA_API std::vector<ReadingNote>
readingNotes(Expression const & expression,
             Units::UnitDisplaySettings const & settings = Units::UnitDisplaySettings::get());

// The name of a reading, as the enumeration has it; empty for a number that isn't one.
VN_COMMONDATA_API char const * readingName(EReading reading);

} // namespace Vn::Expressions

#endif
