// A refused text written as the language reads it.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_REVISIONINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_REVISIONINTERNAL_H

#include <string>

#include "Server/CommonData/Expressions/LooseTextInternal.h"
#include "Server/CommonData/Expressions/UnitGroupInternal.h"

namespace Vn::Expressions {

// The rules that change numbers and their marks: signs that are too many, powers of ten, feet,
// inches and degrees, percents, "x" between numbers.
void reviseNumbers(Pieces & pieces);

// The rules that change functions and constants: other names, commas between arguments.
void reviseNames(Pieces & pieces, RevisionNotes & notes);

// The rules about what stands beside one another: units after numbers and brackets, powers, sums
// of quantities, products without a sign.  False if the text can't be understood.
bool reviseQuantities(Pieces & pieces, RevisionNotes & notes);

// The text that `pieces` mean, which needn't be of the language after all; empty if they can't be
// understood.
std::wstring revised(Pieces pieces, RevisionNotes & notes);

} // namespace Vn::Expressions

#endif
