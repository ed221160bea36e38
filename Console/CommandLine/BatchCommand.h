// Expressions from a file or a pipe, as JSON Lines.

#ifndef VN_CONSOLE_COMMANDLINE_BATCHCOMMAND_H
#define VN_CONSOLE_COMMANDLINE_BATCHCOMMAND_H

#include <iosfwd>
#include <string>

namespace Vn::Console {

// Answers every line of the file, whose path is UTF-8; of `in` for an empty path or "-".  With
// `progress`, the count of lines is told on `err` now and then while a file is read.
int runBatchCommand(std::string const & path, bool withTokens, bool progress, std::istream & in,
                    std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
