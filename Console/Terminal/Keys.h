// The keys of a POSIX terminal, and what happens to it while one is awaited.

#ifndef VN_CONSOLE_TERMINAL_KEYS_H
#define VN_CONSOLE_TERMINAL_KEYS_H

#include <cstddef>
#include <functional>
#include <string>

namespace Vn::Console {

// What is told while a key is awaited, outside of any signal.
struct TerminalEvents {
    std::function<void()> resized;   // the window has another size
    std::function<void()> continued; // the process was stopped, and goes on
};

// Waits for a key of the standard input, which is a terminal, and reads its character from UTF-8.
// What isn't UTF-8 is passed over.  1 if there is one, 0 at the end of the input, -1 with errno for
// an error or an interruption by another signal.  One thread reads at a time.
int readKey(TerminalEvents const & events, wchar_t & key);

// The same for all characters that one key sends, or the terminal by itself: an escape character
// with the sequence after it.  A sequence that doesn't go on soon ends there.
int readSequence(TerminalEvents const & events, std::wstring & keys);

// Whether a key was pressed that isn't read yet.
bool isKeyWaiting();

struct TerminalSize {
    std::size_t rows = 0;
    std::size_t columns = 0;
    bool operator==(TerminalSize const &) const = default;
};

// The size of the terminal that the standard output is; 24 rows and 80 columns if it doesn't tell.
TerminalSize terminalSize();

} // namespace Vn::Console

#endif
