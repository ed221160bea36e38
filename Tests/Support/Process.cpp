#include "Tests/Support/Process.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Vn::Console::Tests {

namespace {

struct Pipe {
    std::array<int, 2> ends{};

    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    }
    void close(std::size_t end) {
        if (ends[end] >= 0) ::close(ends[end]);
        ends[end] = -1;
    }
    ~Pipe() {
        close(0);
        close(1);
    }
};

// Appends what can be read; false at the end.
bool readSome(int descriptor, std::string & text) {
    std::array<char, 65536> buffer;
    ssize_t const count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

[[noreturn]] void become(std::string const & program, std::vector<std::string> const & arguments,
                         Pipe & in, Pipe & out, Pipe & err) {
    ::dup2(in.ends[0], 0);
    ::dup2(out.ends[1], 1);
    ::dup2(err.ends[1], 2);
    std::vector<char *> argv{const_cast<char *>(program.c_str())};
    for (std::string const & argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    ::execv(program.c_str(), argv.data());
    ::_exit(127);
}

// Feeds and drains the process until it closes its streams.
void exchange(Pipe & in, Pipe & out, Pipe & err, std::string const & input, Outcome & outcome) {
    std::size_t written = 0;
    ::fcntl(in.ends[1], F_SETFL, O_NONBLOCK);
    while (out.ends[0] >= 0 || err.ends[0] >= 0) {
        if (written == input.size()) in.close(1);
        std::array<pollfd, 3> polled{pollfd{in.ends[1], POLLOUT, 0}, pollfd{out.ends[0], POLLIN, 0},
                                     pollfd{err.ends[0], POLLIN, 0}};
        ::poll(polled.data(), polled.size(), -1);
        if (polled[0].revents != 0) {
            ssize_t const count =
                ::write(in.ends[1], input.data() + written, input.size() - written);
            if (count < 0)
                in.close(1);
            else
                written += static_cast<std::size_t>(count);
        }
        if (polled[1].revents != 0 && !readSome(out.ends[0], outcome.out)) out.close(0);
        if (polled[2].revents != 0 && !readSome(err.ends[0], outcome.err)) err.close(0);
    }
}

} // namespace

Outcome runProgram(std::string const & program, std::vector<std::string> const & arguments,
                   std::string const & input) {
    std::signal(SIGPIPE, SIG_IGN);
    Pipe in;
    Pipe out;
    Pipe err;
    pid_t const child = ::fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        become(program, arguments, in, out, err);
    }
    in.close(0);
    out.close(1);
    err.close(1);
    Outcome outcome;
    exchange(in, out, err, input, outcome);
    int status = 0;
    ::waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

Outcome runConsole(std::vector<std::string> const & arguments, std::string const & input) {
    return runProgram(VN_CONSOLE_PROGRAM, arguments, input);
}

Outcome runShell(std::string const & line, std::string const & input) {
    ::setenv("VNCONSOLE", VN_CONSOLE_PROGRAM, 1);
    return runProgram("/bin/sh", {"-c", line}, input);
}

} // namespace Vn::Console::Tests
