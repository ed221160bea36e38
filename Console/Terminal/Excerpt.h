// A text on one line, with a caret under one of its characters.

#ifndef VN_CONSOLE_TERMINAL_EXCERPT_H
#define VN_CONSOLE_TERMINAL_EXCERPT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace Vn::Console {

struct Excerpt {
    std::wstring text;  // the text, or a window of it between "..."
    std::wstring caret; // blanks, and the caret
};

// The caret stands under the character at `position16`, counted in 16-bit characters; a position at
// or after the end is the column after the text.  Both lines take the same columns if they start
// in the same column: wide and combining characters are counted as a terminal shows them, tabs
// stand in both lines, and control characters are replaced by their pictures.
Excerpt excerptAt(std::wstring_view text, std::size_t position16);

} // namespace Vn::Console

#endif
