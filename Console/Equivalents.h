// A value in all units of its dimension.

#ifndef VN_CONSOLE_EQUIVALENTS_H
#define VN_CONSOLE_EQUIVALENTS_H

#include <string>
#include <vector>

#include "Server/CommonData/Expressions/Expression.h"

namespace Vn::Console {

// A value in one unit.
struct Equivalent {
    std::wstring unit;      // as one types it; empty for none
    std::wstring kind;      // of quantity, such as Length; empty for a product without a name
    double value = 0.0;     // in the unit
    std::wstring formatted; // both, as values are shown
};

// The value of an expression in its own units; in the units of that dimension in the order of the
// catalogue, which stand with a prefix only where the number then has one to three digits before
// the decimal mark; and in internal units.  Each unit stands once.  A number
// without units stands alone.  Empty without a value.
std::vector<Equivalent> equivalentsOf(Expressions::Expression const & expression,
                                      Units::UnitDisplaySettings const & settings);

} // namespace Vn::Console

#endif
