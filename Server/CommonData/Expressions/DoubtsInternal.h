// Corrections that would parse, and may mean something else than what was typed.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_DOUBTSINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_DOUBTSINTERNAL_H

#include <string_view>

namespace Vn::Expressions {

// Whether a correction had better not be told, since it holds something that the language reads in
// a way of its own, or since people don't agree on what was typed.  A wrong text to write is worse
// than none.  Both texts are short.
bool isDoubtful(std::wstring_view typed, std::wstring_view correction);

} // namespace Vn::Expressions

#endif
