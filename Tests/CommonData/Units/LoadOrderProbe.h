// What was registered at each pause of a module's load.

#ifndef VN_TESTS_COMMONDATA_UNITS_LOADORDERPROBE_H
#define VN_TESTS_COMMONDATA_UNITS_LOADORDERPROBE_H

#include <cstddef>

namespace Vn::Units {

struct LoadSnapshot {
    std::size_t areas;
    std::size_t commands; // of the areas "Expressions" and "Units"
    std::size_t checks;
    std::size_t units;     // catalogue objects handed to the registry
    std::size_t metaTypes; // of the add-in's classes of entities
};

// A pause stands after each step of the load order and one before the first.
inline constexpr std::size_t c_loadPauses = 15;

extern "C" using LoadSnapshots = LoadSnapshot const * ();

// The name under which the probe exports a LoadSnapshots function.
inline constexpr char c_loadSnapshotsName[] = "loadOrderProbeSnapshots";
// The name under which it exports a function that fills the identifiers of the catalogue objects in
// the order in which they were handed to the registry.
inline constexpr char c_pendingIdentifiersName[] = "loadOrderProbeIdentifiers";

extern "C" using PendingIdentifiers = std::size_t(char const ** out, std::size_t size);

} // namespace Vn::Units

#endif
