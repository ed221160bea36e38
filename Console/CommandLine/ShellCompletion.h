// What a shell offers when the tab key is pressed in a call of the program.  The shells ask it by
//
//   vnconsole shell-completion -- WORD...
//
// with the words after the name of the program, up to the one that was begun.

#ifndef VN_CONSOLE_COMMANDLINE_SHELLCOMPLETION_H
#define VN_CONSOLE_COMMANDLINE_SHELLCOMPLETION_H

#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Vn::Console {

// The whole words, in UTF-8, that can stand for the last of `words`; the only one ":files" where a
// file can.  A word that ends with "=" goes on.  The options and subcommands are those that `app`
// declares.
std::vector<std::string> completeShellWords(CLI::App const & app,
                                            std::vector<std::string> const & words);

// Writes them, each on its line.  Returns the exit status.
int runShellCompletion(CLI::App const & app, std::vector<std::string> const & words,
                       std::ostream & out);

} // namespace Vn::Console

#endif
