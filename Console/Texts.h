// Small texts that several commands write.

#ifndef VN_CONSOLE_TEXTS_H
#define VN_CONSOLE_TEXTS_H

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Status.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

// The fewest digits that read back to the same number.
std::wstring shortestNumber(double value);

// What the platform has for texts on a line.
using Text::characterLength;
using Text::clipped;
using Text::printable;
using Text::trimmed;

// The clipped text in double quotes, with what a terminal wouldn't show or would act on replaced.
std::wstring inQuotes(std::wstring_view text);

// What to write instead of a name that isn't among `names`: "; did you mean imp?", or all of them,
// "; there are mks, imp".  Empty if there are none.
std::wstring orInstead(std::wstring const & name, std::vector<std::wstring> const & names);

// Tells on `err` why the program can't do what was asked, and answers the status for that.
int told(std::wstring const & why, std::ostream & err);
int told(Status const & why, std::ostream & err);

// Whether `text` is `word`, where the case of ASCII letters doesn't count.
bool isWord(std::wstring_view text, std::wstring_view word);
// Whether `text` contains `part`, where the case of ASCII letters doesn't count.
bool containsFolded(std::wstring_view text, std::wstring_view part);

} // namespace Vn::Console

#endif
