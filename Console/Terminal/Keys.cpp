#include "Console/Terminal/Keys.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

volatile std::sig_atomic_t s_resized = 0;
volatile std::sig_atomic_t s_continued = 0;

void note(int signal) {
    if (signal == SIGWINCH) s_resized = 1;
    if (signal == SIGCONT) s_continued = 1;
}

// The signals are noted from here on; whoever waited for them before puts its own handlers back.
void noteSignals() {
    struct sigaction action {};
    action.sa_handler = &note;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGWINCH, &action, nullptr);
    ::sigaction(SIGCONT, &action, nullptr);
}

// Keeps the signals for the moment in which they are waited for.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t held;
        ::sigemptyset(&held);
        ::sigaddset(&held, SIGWINCH);
        ::sigaddset(&held, SIGCONT);
        ::pthread_sigmask(SIG_BLOCK, &held, &m_before);
    }
    ~HeldSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    HeldSignals(HeldSignals const &) = delete;
    HeldSignals & operator=(HeldSignals const &) = delete;

    // Waits for input or one of the signals.
    int wait() const {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        return ::ppoll(&input, 1, nullptr, &m_before);
    }

private:
    sigset_t m_before;
};

// False with errno if another signal came.
bool waitForInput(TerminalEvents const & events) {
    for (;;) {
        int ready = 0;
        {
            HeldSignals const held;
            if (!s_resized && !s_continued) ready = held.wait();
        }
        int const error = errno;
        bool const isTold = s_resized || s_continued;
        if (s_continued) {
            s_continued = 0;
            if (events.continued) events.continued();
        }
        if (s_resized) {
            s_resized = 0;
            if (events.resized) events.resized();
        }
        if (ready > 0) return true;
        if (isTold) continue;
        errno = error;
        return false;
    }
}

// The length of a character of UTF-8 that begins so; 0 if none does.
std::size_t lengthOf(char first) {
    auto const byte = static_cast<unsigned char>(first);
    return byte < 0x80   ? 1
           : byte < 0xC2 ? 0
           : byte < 0xE0 ? 2
           : byte < 0xF0 ? 3
           : byte < 0xF5 ? 4
                         : 0;
}

constexpr wchar_t c_escape = 27;
constexpr wchar_t c_bell = 7;

// What a terminal sends by itself comes at once, be it over a slow line.
constexpr int c_pause = 100; // milliseconds

// A key that was read, and belongs to the next sequence; 0 for none.
wchar_t s_ahead = 0;

bool isInputWaiting(int milliseconds) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, milliseconds) > 0;
}

// Reads the next key of a sequence; false if there is none.
bool goesOn(TerminalEvents const & events, wchar_t & key) {
    return isInputWaiting(c_pause) && readKey(events, key) == 1;
}

// Reads digits and signs, and the letter that ends them.
void readParameters(TerminalEvents const & events, std::wstring & keys) {
    for (wchar_t key = 0; goesOn(events, key);) {
        if (key < 0x20 || key > 0x7E) {
            s_ahead = key;
            return;
        }
        keys += key;
        if (key >= 0x40) return;
    }
}

void readControlSequence(TerminalEvents const & events, std::wstring & keys) {
    readParameters(events, keys);
    // The function keys of some consoles have another bracket.
    if (wchar_t key = 0; keys.ends_with(L"[[") && goesOn(events, key)) keys += key;
}

// Reads to its end what a terminal tells when it is asked.
void readControlString(TerminalEvents const & events, std::wstring & keys) {
    for (wchar_t key = 0; goesOn(events, key);) {
        keys += key;
        if (key == c_bell || keys.ends_with(L"\x1B\\")) return;
    }
}

} // namespace

int readKey(TerminalEvents const & events, wchar_t & key) {
    noteSignals();
    std::string bytes;
    for (;;) {
        if (!waitForInput(events)) return -1;
        char byte = 0;
        ssize_t const count = ::read(STDIN_FILENO, &byte, 1);
        if (count == 0) return 0;
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (count < 0) return -1;
        // A character that isn't finished is passed over where another begins.
        if (lengthOf(byte) > 0) bytes.clear();
        bytes += byte;
        std::size_t const length = lengthOf(bytes.front());
        std::wstring text;
        if (length == bytes.size() && Text::fromUtf8(bytes, text)) {
            key = text.front();
            return 1;
        }
        if (bytes.size() >= length) bytes.clear();
    }
}

int readSequence(TerminalEvents const & events, std::wstring & keys) {
    keys.clear();
    wchar_t key = 0;
    if (s_ahead != 0)
        key = std::exchange(s_ahead, L'\0');
    else if (int const result = readKey(events, key); result != 1)
        return result;
    keys = key;
    if (key != c_escape) return 1;
    // Who presses the escape key takes time for the next.
    if (int const result = readKey(events, key); result != 1) return result;
    keys += key;
    if (key == c_escape && goesOn(events, key)) keys += key;
    if (key == L'[')
        readControlSequence(events, keys);
    else if (key == L'O')
        readParameters(events, keys);
    else if (std::wstring_view(L"]P^_").find(key) != std::wstring_view::npos)
        readControlString(events, keys);
    return 1;
}

bool isKeyWaiting() { return s_ahead != 0 || isInputWaiting(0); }

TerminalSize terminalSize() {
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) size = {};
    return {size.ws_row == 0 ? 24u : size.ws_row, size.ws_col == 0 ? 80u : size.ws_col};
}

} // namespace Vn::Console
