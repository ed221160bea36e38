// Expressions by the thousand: JSON Lines in, JSON Lines out.
//
// Each line of the input is an object:
//
//   id        any value, given back; texts in it may be written with other escapes
//   text      the expression
//   context   "?" expects nothing (and so does a missing one), "" expects a unitless result, any
//             other text is a unit such as "m / (s s)"
//   display   null, or the unit in which the value is formatted instead, of the same dimension
//   settings  an object with any of the sixteen display settings; what is missing is standard
//
// Each line of the output answers one line, in order: id, and the members of Console/Answer.h; or
// id and error, where the line can't be understood, the value can't be shown in the unit of
// display, or memory runs out, and with them the number of the line if the id is null.  Blank lines
// are skipped, and count.  All text is UTF-8.

#ifndef VN_CONSOLE_COMMANDLINE_BATCH_H
#define VN_CONSOLE_COMMANDLINE_BATCH_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace Vn::Console {

struct BatchAnswer {
    std::string text;        // one line, without its end
    bool understood = false; // whether the line was: an expression that doesn't parse is
};

// `number` is that of the line, from 1.
BatchAnswer answerBatchLine(std::string const & line, std::size_t number = 1,
                            bool withTokens = true);

struct BatchOptions {
    bool withTokens = true; // in the answers
    // Is told the count of lines now and then and at the end; may be empty.
    std::function<void(std::size_t lines)> progress;
};

struct BatchOutcome {
    std::size_t lines = 0;    // read, blank ones included
    std::size_t badLines = 0; // couldn't be understood
    bool inputFailed = false;
    bool outputFailed = false; // at once ends the run
};

// Answers every line of `in` on `out`.
BatchOutcome runBatch(std::istream & in, std::ostream & out, BatchOptions const & options);

} // namespace Vn::Console

#endif
