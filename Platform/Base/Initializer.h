#ifndef VN_PLATFORM_BASE_INITIALIZER_H
#define VN_PLATFORM_BASE_INITIALIZER_H

#include "Platform/Base/Export.h"

namespace Vn {

// Work that a module wants done once everything it needs has been loaded.  A static Initializer
// puts its function on the process's list while the module loads; the host runs the list when it is
// ready.
class VN_BASE_API Initializer {
public:
    // Puts `function` at the end of the list.  Null is taken and does nothing.
    explicit Initializer(void (*function)());
    // Takes the function off the list if it hasn't run, so that a module may be unloaded unused.
    ~Initializer();
    Initializer(Initializer const &) = delete;
    Initializer & operator=(Initializer const &) = delete;

    // Runs the functions that haven't run yet, in order of construction, each once in its life.
    // What joins the list meanwhile, also from a function that is running, is run too.  Several
    // threads may call this: the second waits for the first.  An exception of a function goes to
    // the caller; that function counts as run, and the rest waits for the next call.
    static void runAll();

private:
    void (*const m_function)();
};

} // namespace Vn

#endif
