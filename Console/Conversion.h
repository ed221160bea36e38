// A conversion around an expression: "100 mm to in", "100 mm -> in", "100 mm as ?".
//
// The language knows nothing of it.  A text that the language reads as a whole is an expression,
// whatever words are in it: "5 mm as in" is a product with attoseconds.  Any other text may be an
// expression, one of "to", "as", "->" and "\u2192", and then a unit of the same dimension, or "?"
// for all of them.  The words stand between blanks.  If several places could divide the text, the
// longest expression counts.  Without an expression the last value is converted: "-> in".
//
// "ans" stands for the last value, unless the language reads the text with it.

#ifndef VN_CONSOLE_CONVERSION_H
#define VN_CONSOLE_CONVERSION_H

#include <optional>
#include <string>

#include "Console/LastValue.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Units/UnitContext.h"

namespace Vn::Console {

// Why a text that is meant as a conversion, or names the last value, can't be read.
struct Refusal {
    std::wstring message;
    std::wstring text; // the line
    // The place in it, and what to type instead.
    Expressions::FailureExplanation explanation;
};

// What a text asks for.
struct Request {
    Expressions::Expression expression; // which may have failed; without a text if it is refused
    std::optional<Units::UnitContext> target; // the unit to show it in
    bool wantsEquivalents = false;            // the value in all units of its dimension
    std::optional<Refusal> refusal;
    std::wstring conversion; // what stands after an expression that failed: " to in"
};

// Why the expression of a request has no value, with the whole line in the corrections, for whom
// values are shown by `settings`.
Expressions::FailureExplanation
explainFailure(Request const & request,
               Units::UnitDisplaySettings const & settings = Units::UnitDisplaySettings::get());

// Reads a text.  Bare numbers in it are read as `context` has it.
Request readRequest(std::wstring const & text, Units::UnitContext const & context,
                    LastValue const & last);

// The lines that tell of a refusal: the message, the text with a mark under the place, and what to
// type instead.
std::string refusalLines(Refusal const & refusal);

} // namespace Vn::Console

#endif
