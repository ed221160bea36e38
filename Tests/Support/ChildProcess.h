// A program that runs beside the test, tells it what it does, and is killed when the test likes.

#ifndef VN_TESTS_SUPPORT_CHILDPROCESS_H
#define VN_TESTS_SUPPORT_CHILDPROCESS_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Vn::Testing {

class ChildProcess {
public:
    // Starts a program.  Its standard output is read here; it has no input, and its errors are
    // ours.  Throws if it can't be started.
    ChildProcess(std::string const & program, std::vector<std::string> const & arguments);
    // Kills it if it still runs.
    ~ChildProcess();
    ChildProcess(ChildProcess const &) = delete;
    ChildProcess & operator=(ChildProcess const &) = delete;

    // Waits for so many bytes of its output.  False if it ends before.
    bool read(void * bytes, std::size_t size);
    // Ends it in the midst of what it does.  What it has written can still be read.  False if it
    // had ended by itself.
    bool kill();
    // Waits for its end; the exit status, or -1 if it was killed.
    int wait();

private:
    struct Process;
    std::unique_ptr<Process> m_pProcess;
};

} // namespace Vn::Testing

#endif
