// Whether there is a database engine.

#ifndef VN_PLATFORM_DATAMODEL_FILE_ENGINE_H
#define VN_PLATFORM_DATAMODEL_FILE_ENGINE_H

#include <string>

namespace Vn::DataModel {

// Why there is no database engine; empty if there is one.  On Windows, which has one of its own,
// the first call loads it into the module that calls, and must come before any other use of it.
// Elsewhere a program doesn't start without it.
#ifdef _WIN32
std::string const & missingEngine();
#else
inline std::string missingEngine() { return {}; }
#endif

} // namespace Vn::DataModel

#endif
