// The functions of the expression language, as Functions.inc lists them.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_FUNCTIONS_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_FUNCTIONS_H

#include <optional>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Expressions {

// The functions, in the order in which they are listed.
enum FunctionId : unsigned char {
#define VN_FUNCTION(number, word, name, text, arguments, first, second, result, value)             \
    Function##name,
#include "Server/CommonData/Expressions/Functions.inc"
};

// The tokens of all functions, by FunctionId.
inline constexpr EToken c_functionTokens[] = {
#define VN_FUNCTION(number, word, name, text, arguments, first, second, result, value) e_##word,
#include "Server/CommonData/Expressions/Functions.inc"
};

// The function that a token names; nothing if it names none.
constexpr std::optional<FunctionId> functionOfToken(EToken token) {
    switch (token) {
#define VN_FUNCTION(number, word, name, text, arguments, first, second, result, value)             \
    case e_##word:                                                                                 \
        return Function##name;
#include "Server/CommonData/Expressions/Functions.inc"
    default:
        return std::nullopt;
    }
}

// How many arguments a function takes.
VN_COMMONDATA_API unsigned int functionArity(FunctionId function);

// Whether its first argument must be an angle.
VN_COMMONDATA_API bool functionTakesAngle(FunctionId function);

} // namespace Vn::Expressions

#endif
