// Why a text isn't an expression, or has no value, in words for the person who typed it.

#ifndef VN_CONSOLE_FAILURE_H
#define VN_CONSOLE_FAILURE_H

#include <cstddef>
#include <string>
#include <vector>

#include "Server/CommonData/Expressions/Expression.h"

namespace Vn::Console {

struct Failure {
    std::wstring message;                  // the outcome in the library's words
    std::wstring explanation;              // the same in plain words
    std::size_t position = 0;              // where the caret belongs, in 16-bit characters
    std::vector<std::wstring> suggestions; // known spellings near a name that wasn't understood
    std::wstring hint;                     // what to type instead; empty if nothing is known
};

// For an expression without a tree.
Failure explainFailure(Expressions::Expression const & expression);

// For an expression with a tree that doesn't evaluate.
std::wstring explainNoValue();

// "  did you mean mm or Mm?" with its line end; empty without suggestions.
std::wstring suggestionLine(Failure const & failure);

// The lines that tell of a failure: message and explanation, the text with a caret under the
// position, and what to type instead.
std::string failureText(Expressions::Expression const & expression);

} // namespace Vn::Console

#endif
