// Expressions from the command line, or from lines.

#ifndef VN_CONSOLE_COMMANDLINE_EVALCOMMAND_H
#define VN_CONSOLE_COMMANDLINE_EVALCOMMAND_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "Console/Documents/DocumentUnits.h"

namespace Vn::Console {

struct EvalOptions {
    std::vector<std::wstring> texts;       // none: each line of the input is one
    std::optional<std::wstring> unit;      // what is expected; empty: a result without units
    std::optional<std::wstring> display;   // what the value is shown in
    std::optional<std::wstring> precision; // how many decimals are shown
    std::vector<std::wstring> settings;    // display settings, as "lengthDisplay=1", in order
    DocumentUnits units;                   // what a document makes of that
    bool standard = false;                 // the factory settings rather than the user's
    bool json = false;                     // an object a line rather than a table a text
    bool withTokens = true;                // in that object
};

// Shows each text's value, units and rebuilt text; what fails is told on `err`, after the number of
// the line if it was read from `in`.  Blank lines are skipped, and count.
int runEval(EvalOptions const & options, std::istream & in, std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
