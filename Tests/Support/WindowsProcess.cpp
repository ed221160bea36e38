// Processes of Windows.

#include "Tests/Support/Process.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <windows.h>

#include "Platform/Base/Text.h"

namespace Vn::Console::Tests {

namespace {

class Handle {
public:
    Handle() = default;
    ~Handle() { close(); }
    Handle(Handle const &) = delete;
    Handle & operator=(Handle const &) = delete;

    HANDLE get() const { return m_handle; }
    HANDLE * out() { return &m_handle; }
    void close() {
        if (m_handle) CloseHandle(m_handle);
        m_handle = nullptr;
    }

private:
    HANDLE m_handle = nullptr;
};

// The child has one end, and nobody else may.
struct Pipe {
    Handle read;
    Handle write;

    explicit Pipe(Handle Pipe::*childs) {
        SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        if (!CreatePipe(read.out(), write.out(), &inherited, 0))
            throw std::runtime_error("no pipe");
        Handle & ours = childs == &Pipe::read ? write : read;
        SetHandleInformation(ours.get(), HANDLE_FLAG_INHERIT, 0);
    }
};

// Starts a process; without one, GetLastError tells why.  Where much is going on, Wine now and then
// can't start one just then, and says that of itself.
PROCESS_INFORMATION started(std::wstring const & line, STARTUPINFOW & start) {
    constexpr int c_attempts = 5;
    PROCESS_INFORMATION made{};
    for (int i = 0; i < c_attempts; ++i) {
        std::wstring words = line; // which the call may change
        if (CreateProcessW(nullptr, words.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                           &start, &made))
            return made;
        if (GetLastError() != ERROR_INTERNAL_ERROR) break;
        Sleep(200);
    }
    return PROCESS_INFORMATION{};
}

// An argument as CommandLineToArgvW takes it apart: backslashes count double in front of a quote.
std::wstring inQuotes(std::wstring_view argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (wchar_t const c : argument) {
        if (c == L'"') text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    text.append(backslashes, L'\\');
    return text + L'"';
}

// Appends what can be read; false at the end.
bool readSome(Handle & from, std::string & text) {
    std::array<char, 65536> buffer;
    DWORD count = 0;
    if (!ReadFile(from.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr))
        return false;
    text.append(buffer.data(), count);
    return count > 0;
}

void drain(Handle & from, std::string & text) {
    while (readSome(from, text)) {}
}

void feed(Handle & to, std::string_view text) {
    DWORD count = 0;
    while (!text.empty() &&
           WriteFile(to.get(), text.data(), static_cast<DWORD>(text.size()), &count, nullptr))
        text.remove_prefix(count);
    to.close();
}

Outcome run(std::string const & program, std::vector<std::string> const & arguments,
            std::string const & input, bool readAll) {
    std::wstring line = inQuotes(Text::fromUtf8(program));
    for (std::string const & argument : arguments)
        line += L' ' + inQuotes(Text::fromUtf8(argument));

    Pipe in(&Pipe::read);
    Pipe out(&Pipe::write);
    Pipe err(&Pipe::write);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = in.read.get();
    start.hStdOutput = out.write.get();
    start.hStdError = err.write.get();
    PROCESS_INFORMATION const made = started(line, start);
    if (!made.hProcess)
        throw std::runtime_error("no process: " + program + ", error " +
                                 std::to_string(GetLastError()));
    Handle process;
    *process.out() = made.hProcess;
    CloseHandle(made.hThread);
    in.read.close();
    out.write.close();
    err.write.close();

    Outcome outcome;
    {
        std::jthread const feeder([&] { feed(in.write, input); });
        std::jthread const second([&] { drain(err.read, outcome.err); });
        if (readAll) {
            drain(out.read, outcome.out);
        } else {
            readSome(out.read, outcome.out);
            out.read.close();
        }
    }
    WaitForSingleObject(process.get(), INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.get(), &status);
    outcome.status = static_cast<int>(status);
    return outcome;
}

} // namespace

Outcome runProgram(std::string const & program, std::vector<std::string> const & arguments,
                   std::string const & input) {
    return run(program, arguments, input, true);
}

Outcome runConsoleUnread(std::vector<std::string> const & arguments, std::string const & input) {
    return run(VN_CONSOLE_PROGRAM, arguments, input, false);
}

Outcome runConsole(std::vector<std::string> const & arguments, std::string const & input) {
    return runProgram(VN_CONSOLE_PROGRAM, arguments, input);
}

} // namespace Vn::Console::Tests
