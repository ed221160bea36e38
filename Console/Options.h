// The user's preferences: shown, changed and saved.

#ifndef VN_CONSOLE_OPTIONS_H
#define VN_CONSOLE_OPTIONS_H

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Vn {
class OptionBase;
}

namespace Vn::Console {

// What can be done, with the words after it.
struct OptionsJob {
    wchar_t const * name;
    wchar_t const * arguments;
    wchar_t const * meaning;
};
std::vector<OptionsJob> const & optionsJobs();

// The names of the preferences in their order, as the fields of the display settings are called.
std::vector<std::string> preferenceNames();

// Does what `words` say: the name of a job and its arguments; none lists the preferences.  A value
// may be several words.  With `json` the answer is one object a line.  `changed` is told of each
// preference that was set or reset, before the record of the settings is looked at again; it may be
// empty.  Returns the exit status.
int runOptions(std::vector<std::wstring> const & words, bool json, std::ostream & out,
               std::ostream & err, std::function<void(OptionBase const &)> const & changed = {});

// Tells in one line on `err` what was wrong with the option files when they were read, if anything
// was.
void tellOfDamagedOptions(std::ostream & err);

} // namespace Vn::Console

#endif
