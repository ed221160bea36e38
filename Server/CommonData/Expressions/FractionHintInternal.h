// The commonest trap of the expression language: "7/2.2" is the fraction 7/2 and then .2.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_FRACTIONHINTINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_FRACTIONHINTINTERNAL_H

#include <string>

#include "Server/CommonData/Expressions/Token.h"
#include "Server/CommonData/Units/UnitContext.h"

namespace Vn::Expressions {

struct TextAround;

// Whether a token is a number that was typed as a fraction, such as 7/2 or 1 7/2.
inline bool isFraction(Token const & token) {
    return token.kind == TK_NUMBER && token.text.find(L'/') != token.text.npos;
}

// For a text that doesn't parse: what to do about a fraction in it that something stands right
// after, with the text to type instead where that parses.  In the user's language; empty if there
// is none.  `correction` gets the whole line with that text; it is left alone if there is none.
std::wstring fractionHint(std::wstring const & text, Units::UnitContext const & context,
                          TextAround const & around, std::wstring & correction);

} // namespace Vn::Expressions

#endif
