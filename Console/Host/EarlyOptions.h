// What the program must know of its arguments before it loads the add-ins that understand them:
// their initialisers read the preferences, and look up texts in the user's language.

#ifndef VN_CONSOLE_HOST_EARLYOPTIONS_H
#define VN_CONSOLE_HOST_EARLYOPTIONS_H

#include <string>
#include <vector>

namespace Vn::Console {

// The options that take a value, those of all subcommands.  The command line is declared by them.
enum class EValueOption {
    Density,
    Display,
    Document,
    From,
    Id,
    Kind,
    Language,
    Material,
    Options,
    Output,
    Override,
    Precision,
    Set,
    Size,
    System,
    Unit,
    View
};

// How such an option is written.
struct ValueOptionName {
    EValueOption option;
    char const * name;      // "--unit"
    char const * shortName; // "-u"; null if there is none
};
ValueOptionName const & valueOptionName(EValueOption option);

// Texts are UTF-8, and empty if they aren't given.
struct EarlyOptions {
    std::string language;
    std::string optionsDirectory;
    std::string subcommand; // the first word that is neither an option nor the value of one

    bool operator==(EarlyOptions const &) const = default;
};

// Reads them wherever they stand in front of "--"; the last counts of several.  What can't be
// understood is passed over: the command line itself tells of it.
EarlyOptions readEarlyOptions(std::vector<std::string> const & arguments);

} // namespace Vn::Console

#endif
