// The database engine of Windows: winsqlite3.dll, which is there from Windows 10 on.
//
// A function of another DLL is called through a pointer of its name with "__imp_" before it.  These
// pointers are defined here, and set when the engine is first asked for.  So a program starts where
// the DLL is missing, which it wouldn't if it imported the functions.  (Delayed imports aren't the
// way: the code that the binutils make for them loses the numbers among the arguments of the first
// call.)

#include <sqlite3.h>

#include "Platform/Base/OS.h"
#include "Platform/DataModel/File/Engine.h"

extern "C" {
#define VN_ENGINE_FUNCTION(name) void * __imp_##name = nullptr;
#include "Platform/DataModel/File/WindowsEngine.inc"
#undef VN_ENGINE_FUNCTION
}

namespace Vn::DataModel {

namespace {

constexpr char c_library[] = "winsqlite3.dll";
constexpr int c_leastVersion = 3'034'000; // as of the library elsewhere

struct Function {
    char const * name;
    void ** address;
};

constexpr Function c_functions[] = {
#define VN_ENGINE_FUNCTION(name) {#name, &__imp_##name},
#include "Platform/DataModel/File/WindowsEngine.inc"
#undef VN_ENGINE_FUNCTION
};

// The cause if that fails.
std::string loadEngine() {
    std::string const library = c_library;
    OS::Module engine;
    if (Status const status = engine.loadFromSystem(library); !status)
        return library + " of Windows 10 or later is missing: " + status.cause();
    for (Function const & function : c_functions) {
        *function.address = engine.symbol(function.name);
        if (!*function.address) return library + " is too old: it has no " + function.name;
    }
    if (sqlite3_libversion_number() < c_leastVersion)
        return library + " is too old: its version is " +
               std::to_string(sqlite3_libversion_number());
    engine.keep();
    return {};
}

} // namespace

std::string const & missingEngine() {
    static auto const * const s_cause = new std::string(loadEngine());
    return *s_cause;
}

} // namespace Vn::DataModel
