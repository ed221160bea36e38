#include "Tests/Support/TerminalSession.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "Tests/Support/TerminalScreen.h"

namespace Vn::Console::Tests {

namespace {

// Long enough for a busy machine and a build with sanitizers.
constexpr int c_silence = 30000;
constexpr int c_step = 5; // both in milliseconds

[[noreturn]] void become(std::vector<std::string> const & arguments,
                         std::map<std::string, std::string> const & environment) {
    ::setenv("TERM", "xterm", 1);
    for (auto const & [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char *> argv{const_cast<char *>(VN_CONSOLE_PROGRAM)};
    for (std::string const & argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    ::execv(VN_CONSOLE_PROGRAM, argv.data());
    ::_exit(127);
}

} // namespace

TerminalSession::TerminalSession(std::vector<std::string> const & arguments,
                                 std::map<std::string, std::string> const & environment) {
    winsize size{};
    size.ws_row = 40;
    size.ws_col = 120;
    m_process = ::forkpty(&m_terminal, nullptr, nullptr, &size);
    if (m_process < 0) throw std::runtime_error("no terminal");
    if (m_process == 0) become(arguments, environment);
}

TerminalSession::~TerminalSession() {
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_terminal);
}

void TerminalSession::type(std::string const & keys) {
    if (::write(m_terminal, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        throw std::runtime_error("the terminal takes no keys");
}

void TerminalSession::resize(unsigned short rows, unsigned short columns) {
    winsize size{};
    size.ws_row = rows;
    size.ws_col = columns;
    if (::ioctl(m_terminal, TIOCSWINSZ, &size) != 0)
        throw std::runtime_error("the terminal keeps its size");
}

void TerminalSession::signal(int number) { ::kill(m_process, number); }

bool TerminalSession::readSome() {
    pollfd polled{m_terminal, POLLIN, 0};
    if (::poll(&polled, 1, c_silence) <= 0) return false;
    std::array<char, 4096> buffer;
    ssize_t const count = ::read(m_terminal, buffer.data(), buffer.size());
    if (count <= 0) return false;
    m_output.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

bool TerminalSession::waitFor(std::string const & text) {
    for (;;) {
        std::string const shown = screen();
        if (std::size_t const at = shown.find(text, m_seen); at != shown.npos) {
            m_seen = at + text.size();
            return true;
        }
        if (!readSome()) return false;
    }
}

bool TerminalSession::waitForRaw(std::string const & text) {
    while (m_output.find(text) == m_output.npos)
        if (!readSome()) return false;
    return true;
}

bool TerminalSession::waitForRow(std::string const & text, std::size_t column, std::size_t rows,
                                 std::size_t columns) {
    for (;;) {
        TerminalScreen screen(rows, columns);
        screen.write(m_output);
        if (screen.row(screen.cursorRow()) == text && screen.cursorColumn() == column) return true;
        if (!readSome()) return false;
    }
}

bool TerminalSession::waitForLines(bool taken) {
    for (int waited = 0; waited < c_silence; waited += c_step) {
        termios settings{};
        if (::tcgetattr(m_terminal, &settings) == 0 && ((settings.c_lflag & ICANON) != 0) == taken)
            return true;
        ::usleep(c_step * 1000);
    }
    return false;
}

bool TerminalSession::waitForPrompt(std::string const & prompt) {
    return waitFor(prompt) && waitForLines(false);
}

bool TerminalSession::waitForRun() { return waitForLines(true); }

int TerminalSession::waitForEnd() {
    while (readSome()) {}
    int status = 0;
    // Its streams may end a moment before the process does; one that fell silent is ended.
    for (int waited = 0; ::waitpid(m_process, &status, WNOHANG) == 0; waited += c_step) {
        if (waited >= c_silence) ::kill(m_process, SIGKILL);
        ::usleep(c_step * 1000);
    }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string TerminalSession::screen() const {
    std::string shown;
    for (std::size_t i = 0; i < m_output.size(); ++i) {
        if (m_output[i] != '\x1B') {
            shown += m_output[i];
        } else if (i + 1 < m_output.size() && m_output[i + 1] == '[') {
            // A sequence ends with a letter.
            for (i += 2; i < m_output.size() && (m_output[i] < '@' || m_output[i] > '~');) ++i;
        } else {
            ++i;
        }
    }
    return shown;
}

} // namespace Vn::Console::Tests
