// How work on documents ends when the user presses Ctrl-C.

#ifndef VN_CONSOLE_DOCUMENTS_INTERRUPTION_H
#define VN_CONSOLE_DOCUMENTS_INTERRUPTION_H

#include <exception>

#include "Platform/Base/OS.h"

namespace Vn::Console {

// Thrown by work that the user wishes to end; the step that it belongs to is taken back.
class Interrupted final : public std::exception {
public:
    char const * what() const noexcept override { return "it was interrupted"; }
};

// Long work asks this again and again.
inline void endIfInterrupted() {
    if (OS::wasInterrupted()) throw Interrupted();
}

} // namespace Vn::Console

#endif
