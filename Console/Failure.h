// Why a text isn't an expression, as lines for the person who typed it.

#ifndef VN_CONSOLE_FAILURE_H
#define VN_CONSOLE_FAILURE_H

#include <string>

#include "Server/CommonData/Expressions/FailureExplanation.h"

namespace Vn::Console {

// "  did you mean mm or Mm?" with its line end; empty without suggestions.
std::wstring questionLine(Expressions::FailureExplanation const & failure);

// The hint, else the question, with its line end; empty if there is neither.
std::wstring hintLine(Expressions::FailureExplanation const & failure);

// The lines that tell of the failure of an expression without a tree: the message, the text with a
// mark under the place, and what to type instead.
std::string failureLines(Expressions::Expression const & expression);
std::string failureLines(Expressions::Expression const & expression,
                         Expressions::FailureExplanation const & failure);

} // namespace Vn::Console

#endif
