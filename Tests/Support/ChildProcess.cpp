#include "Tests/Support/ChildProcess.h"

#include <stdexcept>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "Platform/Base/Text.h"
#else
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace Vn::Testing {

#ifdef _WIN32

struct ChildProcess::Process {
    HANDLE process = nullptr;
    HANDLE output = nullptr;

    ~Process() {
        if (process) CloseHandle(process);
        if (output) CloseHandle(output);
    }
};

ChildProcess::ChildProcess(std::string const & program, std::vector<std::string> const & arguments)
    : m_pProcess(std::make_unique<Process>()) {
    // None of the arguments has quotes or ends in a backslash.
    std::wstring line = L'"' + Text::fromUtf8(program) + L'"';
    for (std::string const & argument : arguments) line += L" \"" + Text::fromUtf8(argument) + L'"';

    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE write = nullptr;
    if (!CreatePipe(&m_pProcess->output, &write, &inherited, 0))
        throw std::runtime_error("no pipe");
    SetHandleInformation(m_pProcess->output, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = write;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION made{};
    BOOL const isMade = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                       nullptr, &start, &made);
    CloseHandle(write);
    if (!isMade) throw std::runtime_error("no process: " + program);
    m_pProcess->process = made.hProcess;
    CloseHandle(made.hThread);
}

bool ChildProcess::read(void * bytes, std::size_t size) {
    auto * to = static_cast<char *>(bytes);
    while (size > 0) {
        DWORD count = 0;
        if (!ReadFile(m_pProcess->output, to, static_cast<DWORD>(size), &count, nullptr) ||
            count == 0)
            return false;
        to += count;
        size -= count;
    }
    return true;
}

bool ChildProcess::kill() {
    bool const isRunning = WaitForSingleObject(m_pProcess->process, 0) == WAIT_TIMEOUT;
    TerminateProcess(m_pProcess->process, 1);
    WaitForSingleObject(m_pProcess->process, INFINITE);
    return isRunning;
}

int ChildProcess::wait() {
    WaitForSingleObject(m_pProcess->process, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(m_pProcess->process, &status);
    return static_cast<int>(status);
}

#else

struct ChildProcess::Process {
    pid_t process = -1;
    int output = -1;
    int status = 0;
    bool isOver = false;

    ~Process() {
        if (output >= 0) ::close(output);
    }
    int wait() {
        while (!isOver) isOver = ::waitpid(process, &status, 0) == process;
        return status;
    }
};

ChildProcess::ChildProcess(std::string const & program, std::vector<std::string> const & arguments)
    : m_pProcess(std::make_unique<Process>()) {
    std::vector<char *> argv{const_cast<char *>(program.c_str())};
    for (std::string const & argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);

    int pipes[2];
    if (::pipe2(pipes, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    m_pProcess->output = pipes[0];
    m_pProcess->process = ::fork();
    if (m_pProcess->process == 0) {
        ::dup2(pipes[1], 1);
        ::execv(program.c_str(), argv.data());
        ::_exit(127);
    }
    ::close(pipes[1]);
    if (m_pProcess->process < 0) throw std::runtime_error("no process: " + program);
}

bool ChildProcess::read(void * bytes, std::size_t size) {
    auto * to = static_cast<char *>(bytes);
    while (size > 0) {
        ssize_t const count = ::read(m_pProcess->output, to, size);
        if (count <= 0) return false;
        to += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool ChildProcess::kill() {
    if (!m_pProcess->isOver) ::kill(m_pProcess->process, SIGKILL);
    return WIFSIGNALED(m_pProcess->wait());
}

int ChildProcess::wait() {
    int const status = m_pProcess->wait();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#endif

ChildProcess::~ChildProcess() { kill(); }

} // namespace Vn::Testing
