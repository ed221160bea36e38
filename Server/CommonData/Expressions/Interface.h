// The door of the expression engine.
//
//   ParseResult result;
//   Node * const node = Interface::get()->parse(L"2cm*2 + 3cm/2", UnitContext(L"cm"), result);
//   if (node) { ... evaluate, unitEvaluate, formattedValue, reconstructString ... }
//   Interface::get()->destroy(node);
//
// Expression.h offers a handle that owns its tree.
//
// Bad input is a result, never an exception; only want of memory throws.  Different trees may be
// used from different threads at once; one tree belongs to one thread at a time.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_INTERFACE_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_INTERFACE_H

#include <string>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/ParseResult.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

class Node;

class VN_COMMONDATA_API Interface {
public:
    // The one engine of the process; it is never deleted.
    static Interface * get();

    // The tree of `text`, owned by the caller until destroy; null on every failure, with the
    // outcome in `result` in both cases.
    Node * parse(std::wstring const & text, Units::UnitContext const & context,
                 ParseResult & result) const;

    // The value in internal units.  False if it isn't finite, a divisor is nearly zero, or the
    // domain of a function is left.
    bool evaluate(Node * node, double & value) const;

    // The units of the value.  False if they conflict.
    bool unitEvaluate(Node * node, Units::ComplexUnit & units,
                      Units::UnitContext const & context) const;

    // The value for the user: in the expected units of the context, else in those that the
    // expression was parsed with, else in its own.  Empty if it doesn't evaluate.
    std::wstring formattedValue(Node * node, Units::EUnitDisplayMode mode,
                                Units::UnitDisplaySettings const & settings,
                                Units::UnitContext const & context) const;

    // The expression in standard spelling, with each number as typed and with the units that bare
    // numbers took.
    std::wstring reconstructString(Node * node, Units::EUnitDisplayMode mode,
                                   Units::UnitDisplaySettings const & settings) const;

    // Ends the whole tree of `node`, which is what parse returned; nothing for null.
    void destroy(Node * node) const;
};

} // namespace Vn::Expressions

#endif
