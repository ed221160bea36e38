// The language in which the console speaks and reads words.

#ifndef VN_CONSOLE_HOST_LANGUAGE_H
#define VN_CONSOLE_HOST_LANGUAGE_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Vn::Console {

// What a variable of the environment holds; empty if there is none.
using Environment = std::function<std::string(char const * name)>;

// The tag of the language that the environment asks for, as other programs understand it: LC_ALL,
// or else LC_MESSAGES, or else LANG names it; unless that is "C", LANGUAGE may hold a list of
// others that are preferred, with ":" between them.  The first that there are texts for is taken;
// empty, for English, if there are none.
std::string preferredLanguage(Environment const & environment);
// The same with the environment of the process.
std::string preferredLanguage();

// Empty if there are texts in the language of a tag, else what is wrong: `there is no language
// "xx"; there are en, de, fr, ja`.
std::wstring whyNotLanguage(std::string_view tag);

// The tags of all languages, "en" first.
std::vector<std::wstring> languages();
// The language that is used, as a tag; "en" for English.
std::wstring language();

} // namespace Vn::Console

#endif
