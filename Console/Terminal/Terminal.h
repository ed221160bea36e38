// What the console asks of the system that the language doesn't offer.

#ifndef VN_CONSOLE_TERMINAL_TERMINAL_H
#define VN_CONSOLE_TERMINAL_TERMINAL_H

#include <array>
#include <filesystem>
#include <streambuf>

namespace Vn::Console {

// Whether a stream of the process is a terminal.
bool inputIsTerminal();
bool outputIsTerminal();
bool errorIsTerminal();

// Where the console may keep what a session leaves to the next, made if it wasn't there; empty if
// the system names no place.
std::filesystem::path stateDirectory();

// The standard output, written in blocks.  Remembers why the first write failed, which a stream
// forgets.
class StandardOutput final : public std::streambuf {
public:
    StandardOutput();

    // The errno of the first write that failed; 0 if none did.
    int error() const { return m_error; }

private:
    int_type overflow(int_type c) override;
    int sync() override;
    bool write();

    std::array<char, 65536> m_buffer;
    int m_error = 0;
};

} // namespace Vn::Console

#endif
