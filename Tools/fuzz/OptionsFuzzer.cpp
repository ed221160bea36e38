// The bytes of an option file: loading touches nothing, a change is saved and comes back with all
// else as it was, and what couldn't be understood is kept.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "Tests/Base/TestOptions.h"

namespace {

using namespace Vn;
using Testing::contentOf;
using Testing::TestGroup;

void expect(bool good, char const * law) {
    if (good) return;
    std::fprintf(stderr, "broken: %s\n", law);
    std::abort();
}

// In memory, where there is such a directory; it goes with the process.
class Directory {
public:
    Directory() { std::filesystem::create_directories(m_path); }
    ~Directory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    std::filesystem::path const & path() const noexcept { return m_path; }

private:
    static std::filesystem::path parent() {
        std::filesystem::path const memory = "/dev/shm";
        return std::filesystem::is_directory(memory) ? memory
                                                     : std::filesystem::temp_directory_path();
    }

    std::filesystem::path const m_path = parent() / ("VnOptionsFuzzer-" + std::to_string(getpid()));
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    static Directory const s_directory;
    std::string const bytes(reinterpret_cast<char const *>(data), size);
    TestGroup group(s_directory.path());
    std::filesystem::path const kept = group.file().string() + ".damaged";
    std::filesystem::remove(kept);
    Testing::write(group.file(), bytes);

    Status const loaded = group.loaded();
    expect(contentOf(group.file()) == bytes, "loading touches nothing");
    expect(loaded || (!loaded.cause().empty() && !loaded.subject().empty()),
           "a failure has a reason");
    expect(loaded || loaded.code() == StatusCorrupt, "what can be opened is good or damaged");
    expect(!group.number.dirty() && !group.flag.dirty() && !group.real.dirty(),
           "what was loaded is what is saved");
    expect(std::isfinite(group.real.value()), "a number is one");

    int const number = group.number.value();
    bool const flag = group.flag.value();
    double const real = group.real.value();
    group.number.setValueFromString(std::to_wstring(number == 77 ? 78 : 77));
    Status const saved = group.saved();
    expect(saved.ok(), "any file is saved over");
    expect(!group.number.needsSaving(), "what is saved needn't be saved");
    bool const isKept = std::filesystem::exists(kept);
    expect(!isKept || contentOf(kept) == bytes, "what is kept is what was there");
    expect(!isKept || !loaded, "what is good isn't kept aside");
    std::string const first = contentOf(group.file());

    TestGroup again(s_directory.path());
    Status const reloaded = again.loaded();
    expect(reloaded.ok() || (!isKept && !loaded.ok()), "what was saved is good");
    expect(again.number.value() == (number == 77 ? 78 : 77), "a change comes back");
    expect(again.flag.value() == flag && again.real.value() == real, "the rest is as it was");

    again.number.setValueFromString(std::to_wstring(number));
    expect(again.saved().ok(), "it is changed back");
    again.number.setValueFromString(std::to_wstring(number == 77 ? 78 : 77));
    expect(again.saved().ok(), "and once more");
    expect(contentOf(group.file()) == first, "the same values make the same file");
    return 0;
}
