// A text on one line, with marks under some of its characters.

#ifndef VN_CONSOLE_TERMINAL_EXCERPT_H
#define VN_CONSOLE_TERMINAL_EXCERPT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace Vn::Console {

struct Excerpt {
    std::wstring text;  // the text, or a window of it between "..."
    std::wstring marks; // blanks, a caret, and "~" under a piece
};

// The caret stands under the character at `position16`, counted in 16-bit characters; a position at
// or after the end is the column after the text.  Both lines take the same columns if they start
// in the same column: wide and combining characters are counted as a terminal shows them, tabs
// stand in both lines, and control characters are replaced by their pictures.
//
// A piece from `start16` up to `end16` that begins elsewhere than at the caret is underlined, as
// far as it is in the window.
Excerpt excerptAt(std::wstring_view text, std::size_t position16, std::size_t start16 = 0,
                  std::size_t end16 = 0);

} // namespace Vn::Console

#endif
