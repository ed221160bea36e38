#ifndef VN_CONSOLE_COMMANDLINE_EXITSTATUS_H
#define VN_CONSOLE_COMMANDLINE_EXITSTATUS_H

namespace Vn::Console {

// What the process tells its caller.  Scripts rely on the numbers.
enum EExitStatus : int {
    ExitGood = 0,
    // A text, a command, a file or a check wasn't good, or something couldn't be saved or written.
    ExitBadInput = 1,
    ExitBadUsage = 2, // the command line couldn't be understood
    // A document isn't damaged, but has entities that this program doesn't know.
    ExitUnknownTypes = 3,
    ExitInterrupted = 130 // by Ctrl-C, as programs that it ends outright say
};

} // namespace Vn::Console

#endif
