// Expressions from the command line.

#ifndef VN_CONSOLE_COMMANDLINE_EVALCOMMAND_H
#define VN_CONSOLE_COMMANDLINE_EVALCOMMAND_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "Console/Documents/DocumentUnits.h"

namespace Vn::Console {

struct EvalOptions {
    std::vector<std::wstring> texts;
    std::optional<std::wstring> unit;    // what is expected; empty: a result without units
    std::optional<std::wstring> display; // what the value is shown in
    DocumentUnits units;                 // what a document makes of that
    bool standard = false;               // the factory settings rather than the user's
    bool json = false;                   // an object a line rather than a table a text
    bool withTokens = true;              // in that object
};

// Shows each text's value, units and rebuilt text; what fails is told on `err`.
int runEval(EvalOptions const & options, std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
