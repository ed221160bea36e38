// The functions of the expression language.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_FUNCTIONS_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_FUNCTIONS_H

#include "Server/CommonData/Export.h"

namespace Vn::Expressions {

// The functions, numbered by their token less e_COS.
enum FunctionId : unsigned char {
    FunctionCos,
    FunctionAcos,
    FunctionCosh,
    FunctionSin,
    FunctionAsin,
    FunctionSinh,
    FunctionTan,
    FunctionAtan,
    FunctionTanh,
    FunctionSqrt,
    FunctionExp,
    FunctionPow,
    FunctionLn,
    FunctionLog,
    FunctionFloor,
    FunctionCeil,
    FunctionRound,
    FunctionAbs,
    FunctionSign,
    FunctionMax,
    FunctionMin,
    FunctionRandom
};

// How many arguments a function takes.
VN_COMMONDATA_API unsigned int functionArity(FunctionId function);

} // namespace Vn::Expressions

#endif
