// What the parser of the command line says, in the user's language.

#ifndef VN_CONSOLE_COMMANDLINE_PARSERTEXTS_H
#define VN_CONSOLE_COMMANDLINE_PARSERTEXTS_H

#include <string>

namespace CLI {
class App;
}

namespace Vn::Console {

// Has the parser write its headings and its mistakes in the language.  To be called for a parser,
// and for each of its subcommands, before anything is added to it.  In English all stays as it is.
void translateParser(CLI::App & app);

// A mistake that the parser tells of in English, in the language; one that isn't known stays.
std::string parserMistake(std::string const & english);

} // namespace Vn::Console

#endif
