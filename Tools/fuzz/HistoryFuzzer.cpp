// A string of operations on a document: make, list, remove, own, link, hold, let go, transactions
// that nest, undo, redo, abort, save and load.  Each byte chooses what comes next; the laws of
// Tests/DataModel/DocumentWalk.h hold after each operation.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "Tests/DataModel/DocumentWalk.h"

namespace {

// In memory, where there is such a directory.
std::filesystem::path file() {
    std::filesystem::path const memory = "/dev/shm";
    std::filesystem::path const directory =
        std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    return directory / ("VnHistoryFuzzer-" + std::to_string(getpid()) + ".vnd");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::size_t place = 0;
    auto const source = [&](unsigned limit) {
        unsigned value = place < size ? data[place] : 0;
        ++place;
        if (limit > 256) {
            value = value << 8 | (place < size ? data[place] : 0);
            ++place;
        }
        return value % limit;
    };
    std::string way;
    Vn::Testing::DocumentWalk walk(source, file());
    while (place < size) {
        bool const good = walk.step();
        way += walk.did() + '\n';
        if (good) continue;
        std::fprintf(stderr, "%sbroken: %s\n", way.c_str(), walk.wrong().c_str());
        std::abort();
    }
    return 0;
}
