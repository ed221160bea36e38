#ifndef VN_CONSOLE_EXITSTATUS_H
#define VN_CONSOLE_EXITSTATUS_H

namespace Vn::Console {

// What the process tells its caller.  Scripts rely on the numbers.
enum EExitStatus : int {
    ExitGood = 0,
    ExitBadInput = 1, // a text, a file or a check wasn't good, or the output couldn't be written
    ExitBadUsage = 2  // the command line couldn't be understood
};

} // namespace Vn::Console

#endif
