// How near one word is to another.

#ifndef VN_CONSOLE_SPELLING_H
#define VN_CONSOLE_SPELLING_H

#include <cstddef>
#include <string_view>

namespace Vn::Console {

// The number of characters to insert, drop, replace, or swap with their neighbour to get from one
// word to the other, ASCII case not counted.  The cost is the product of the lengths.
std::size_t mistakes(std::wstring_view a, std::wstring_view b);

// How many mistakes a word of that length may have and still be recognised.
constexpr std::size_t allowedMistakes(std::size_t length) {
    return length < 3 ? 0 : length < 6 ? 1 : length < 10 ? 2 : 3;
}

} // namespace Vn::Console

#endif
