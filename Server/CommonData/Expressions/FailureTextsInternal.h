// What people are told about an expression that fails, in their language.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_FAILURETEXTSINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_FAILURETEXTSINTERNAL_H

#include <string>

namespace Vn::Expressions {

// The texts by their names.
enum class EFailureText {
#define VN_FAILURE_TEXT(name, text) name,
#include "Server/CommonData/Expressions/FailureTexts.inc"
};

// The text in the user's language, for Text::filled.
std::wstring failureText(EFailureText text);

} // namespace Vn::Expressions

#endif
