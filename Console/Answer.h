// The answer to an expression as the members of a JSON object: one shape for all commands that
// answer programs.
//
//   tokens              [[kind, start, end, text], ...], unless they aren't wanted
//   parsed, evaluated   whether there is a tree, and whether it has a value
//   result              the name of the outcome; "parsedOk" if there is a tree
//   position, message   where the parse stopped, 0 unless it failed to parse; the outcome in words
//   value               in internal units, or null
//   units               of the value, as the library writes them: "(meter) / (second)"
//   formatted, rebuilt  the value as it is shown, and the expression in standard spelling;
//                       formattedValueOnly, formattedUnitOnly and rebuiltValueOnly are parts of
//                       them
//   readableUnits       the units as one types them, "m / s", and likewise internalUnits
//   rebuiltReadsBack    whether the rebuilt text reads back to the same value
//   textToStore         the rebuilt text if it does, else the text as typed
//   reason              the name of the reason why there is no tree; "none" if there is one
//   start, end          the piece of the text that is at fault
//   explanation         the reason in words, also for a tree without a value
//   suggestions, hint   known names like one that isn't known, and what to type instead
//   corrections         lines that may be meant by one without a value, the likeliest first; each
//                       is good
//   notes               readings that people rarely mean, of a text with a value: objects with the
//                       name of the reading, the start and end of the piece, and the text of the
//                       note
//
// All members are always there.  Texts are empty, and numbers 0, where there is nothing to tell.
// What can't be shown in the unit that is asked for has no such answer, but an error.

#ifndef VN_CONSOLE_ANSWER_H
#define VN_CONSOLE_ANSWER_H

#include <string>
#include <string_view>

#include "Server/CommonData/Expressions/FailureExplanation.h"

namespace Vn::Console {

// A text in the quotes and escapes of JSON, in UTF-8.
std::string jsonText(std::wstring_view text);

// A number in 17 digits at most, from which the same one is read.
std::string jsonNumber(double value);

// The members, with commas between them and no braces around them.  `failure` is the explanation of
// an expression without a value.  Memory may run out in it, which leaves nothing behind.
std::string answerMembers(Expressions::Expression const & expression,
                          Units::UnitDisplaySettings const & settings,
                          Units::UnitContext const & display, bool withTokens,
                          Expressions::FailureExplanation const & failure);

// The members that tell of the place of a fault, and what to type instead: start, end, suggestions,
// hint and corrections.
std::string refusalMembers(Expressions::FailureExplanation const & failure);

} // namespace Vn::Console

#endif
