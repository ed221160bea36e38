// Small texts that several commands write.

#ifndef VN_CONSOLE_TEXTS_H
#define VN_CONSOLE_TEXTS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace Vn::Console {

// The fewest digits that read back to the same number.
std::wstring shortestNumber(double value);

// The text, or its beginning and "..." if it has more than `length` characters.
std::wstring clipped(std::wstring_view text, std::size_t length = 60);

// The clipped text in double quotes, with what a terminal wouldn't show or would act on replaced.
std::wstring inQuotes(std::wstring_view text);

// The number of wchar_t that the character at `index` takes: 2 for a surrogate pair, else 1.
std::size_t characterLength(std::wstring_view text, std::size_t index);

// What is printed for a character so that it stays on its line and takes its place there: control
// characters and marks of direction get a picture.  Anything else is itself.
wchar_t printable(wchar_t c);
std::wstring printable(std::wstring_view text);

// The text without blanks at its ends.
std::wstring_view trimmed(std::wstring_view text);

// Whether `text` contains `part`, where the case of ASCII letters doesn't count.
bool containsFolded(std::wstring_view text, std::wstring_view part);

} // namespace Vn::Console

#endif
