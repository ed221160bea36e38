// The bytes of a document file: it opens or there is a reason why not; what opens is saved, opens
// again, and is the same document.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace {

using namespace Vn;

void expect(bool good, char const * law) {
    if (good) return;
    std::fprintf(stderr, "broken: %s\n", law);
    std::abort();
}

// In memory, where there is such a directory.
std::filesystem::path fileFor(char const * ending) {
    std::filesystem::path const memory = "/dev/shm";
    std::filesystem::path const directory =
        std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    return directory / ("VnDocumentFuzzer-" + std::to_string(getpid()) + ending);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    static std::filesystem::path const s_file = fileFor(".vnd");
    static std::filesystem::path const s_copy = fileFor("-copy.vnd");
    {
        std::ofstream out(s_file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<char const *>(data), static_cast<std::streamsize>(size));
    }
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(s_file, nullptr, asset);
    expect(status.ok() == static_cast<bool>(asset), "a document exactly if it opens");
    expect(status || (!status.cause().empty() && !status.subject().empty()),
           "a failure has a reason");
    std::vector<std::string> findings;
    Status const checked = DocumentFile::check(s_file, findings);
    expect(checked || !checked.cause().empty(), "a failed check has a reason");
    if (asset) {
        std::string const text = Testing::dump(*asset);
        Status const saved = DocumentFile::saveAs(*asset, s_copy);
        expect(saved.ok(), "what opens can be saved");
        StrongRef<Asset> again;
        expect(DocumentFile::load(s_copy, nullptr, again).ok(), "what was saved opens");
        expect(Testing::dump(*again) == text, "and is the same");
        findings.clear();
        expect(DocumentFile::check(s_copy, findings).ok() && findings.empty(),
               "and has no findings");
    }
    return 0;
}
