// The parser: from tokens to a tree, by recursive descent.
//
//   expression   term, then any number of ("+" or "-", term)
//   term         factor, then any number of ("*", "/", "%" or "^", factor)
//   factor       "-" factor
//                "(" expression ")"
//                number, then optional units
//                function "(" arguments ")"
//                constant, then optional units
//                units that begin with a name
//   arguments    expressions separated by ";"
//   units        unit term, then any number of ("*" or "/", unit term)
//   unit term    one or more unit powers, written next to each other
//   unit power   unit atom, then optional "^" and a whole number greater than 0
//   unit atom    "(" units ")", or a name of a unit
//
// There are only two levels of binary operators: "^" stands on that of "*", and all group to the
// left.  Values are never multiplied by standing next to each other; units are.
//
// On success a rule leaves in the current token the last one that it consumed.  Where a rule fails
// for good after something that it had accepted, it marks the offending token unknown, so that
// nothing else takes it and the failure is reported there.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_PARSERINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_PARSERINTERNAL_H

#include <string_view>

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/ParseResult.h"
#include "Server/CommonData/Expressions/TreeInternal.h"

namespace Vn::Expressions {

class Parser {
public:
    static Parser const * get();

    // The tree of `text`, owned by the caller (Tree::destroy); null on every failure.  `expected`,
    // which may be null, is what the result shall have the dimension of, and what bare numbers take
    // that come to need a unit.
    Node * parse(std::wstring_view text, Units::UnitContext const & context,
                 Units::ComplexUnit const * expected, ParseResult & result) const;
};

} // namespace Vn::Expressions

#endif
