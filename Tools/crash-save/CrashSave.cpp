// Kills a program while it saves a document, again and again, and looks at what is left; see
// README.md.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using namespace Vn;
using namespace Vn::Testing;
namespace fs = std::filesystem;

// What the child tells, at the front of a line of the log: a save begins, a save has ended.
constexpr char c_begins = 'b';
constexpr char c_ended = 'e';

struct Entry {
    char what;
    std::size_t state; // a hash of the whole document
};

std::size_t stateOf(Asset const & asset) { return std::hash<std::string>()(dump(asset)); }

// The child: loads the document, changes and saves it until it is killed.  Returns if it can't.
int save(std::filesystem::path const & file, unsigned seed) {
    OS::Utf8Streams const streams; // which hold bytes as they are
    std::mt19937 random(seed);
    StrongRef<Asset> asset;
    if (!DocumentFile::load(file, nullptr, asset)) return 2;
    auto const tell = [&](char what) {
        Entry const entry{what, stateOf(*asset)};
        return std::fwrite(&entry, sizeof entry, 1, stdout) == 1 && std::fflush(stdout) == 0;
    };
    for (;;) {
        changeRandomly(*asset, static_cast<unsigned>(random()));
        if (!tell(c_begins)) return 3;
        Status const status =
            random() % 3 ? DocumentFile::save(*asset) : DocumentFile::saveAs(*asset, file);
        if (!status) {
            std::fprintf(stderr, "%s\n", status.toString().c_str());
            return 4;
        }
        if (!tell(c_ended)) return 3;
    }
}

class Driver {
public:
    Driver(std::string program, fs::path directory, unsigned seed)
        : m_program(std::move(program)), m_directory(std::move(directory)),
          m_file(m_directory / "crash.vnd"), m_random(seed) {}

    // Kills one child.  Returns whether the file holds what it should.
    bool killOne() {
        if (m_kills++ % 25 == 0 && !begin()) return false;
        auto const seed = static_cast<unsigned>(m_random());
        ChildProcess child(m_program, {"--child", utf8(m_file), std::to_string(seed)});

        // Some saves go well, and tell how long one takes.  The child dies in one that follows, or
        // close after it.
        using Clock = std::chrono::steady_clock;
        Entry entry{};
        std::size_t under = m_state; // the state that was being saved
        std::size_t ended = m_state; // the state that was saved last
        Clock::time_point begun;
        for (auto saves = 1 + m_random() % 4; saves > 0 && child.read(&entry, sizeof entry);) {
            under = entry.state;
            if (entry.what == c_begins) {
                begun = Clock::now();
                --saves;
            } else {
                ended = entry.state;
                m_duration = (m_duration * 3 + (Clock::now() - begun)) / 4;
            }
        }
        std::uniform_real_distribution<double> part(0, 1.3);
        std::this_thread::sleep_for(part(m_random) * m_duration);
        bool const isKilled = child.kill();
        while (child.read(&entry, sizeof entry)) {
            under = entry.state;
            if (entry.what == c_ended) ended = entry.state;
        }
        if (!isKilled) return complain("the child ended by itself");
        collect();
        return m_random() % 3 ? look(m_file, ended, under) : replaceAndLook(ended, under);
    }

    unsigned within() const { return m_within; }
    unsigned kept() const { return m_kept; }
    unsigned renewed() const { return m_renewed; }
    unsigned replaced() const { return m_replaced; }

private:
    bool complain(std::string const & what) {
        std::fprintf(stderr, "kill %u: %s\n", m_kills, what.c_str());
        return false;
    }

    // Another document, so that they don't grow too large.
    bool begin() {
        StrongRef<Asset> const asset = randomDocument(static_cast<unsigned>(m_random()), 400);
        m_state = stateOf(*asset);
        Status const status = DocumentFile::saveAs(*asset, m_file);
        return status ? true : complain(status.toString());
    }

    static fs::path beside(fs::path const & file, char const * ending) {
        return fs::path(file) += ending;
    }

    // Keeps copies of what a kill has left, to lie beside other files later.
    void collect() {
        for (char const * const ending : {"-journal", ".saving"})
            if (fs::exists(beside(m_file, ending))) {
                fs::path const copy =
                    m_directory / ("left-" + std::to_string(m_random() % 20) + ending);
                fs::remove(copy); // not every library copies over what is there
                fs::copy_file(beside(m_file, ending), copy);
            }
    }

    // The file is moved away, and another document takes its name; what the kill left lies there,
    // or what an earlier one did.  The journal is given back to the file that was moved.
    bool replaceAndLook(std::size_t ended, std::size_t under) {
        fs::path const moved = m_directory / "moved.vnd";
        fs::rename(m_file, moved);
        bool const hasJournal = fs::exists(beside(m_file, "-journal"));
        for (char const * const ending : {"-journal", ".saving"}) {
            fs::path const old = m_directory / ("left-" + std::to_string(m_random() % 20) + ending);
            if (fs::exists(old) && !fs::exists(beside(m_file, ending)))
                fs::copy_file(old, beside(m_file, ending));
        }
        StrongRef<Asset> const asset = randomDocument(static_cast<unsigned>(m_random()), 400);
        std::vector<fs::path> kept;
        Status const saved = DocumentFile::saveAsKeeping(*asset, m_file, kept);
        if (!saved) return complain(saved.toString());
        for (char const * const ending : {"-journal", ".saving"})
            if (fs::exists(beside(m_file, ending)))
                return complain("something is left beside the file");
        ++m_replaced;
        std::size_t const state = stateOf(*asset);
        if (!look(m_file, state, state)) return false;
        for (fs::path const & file : kept) {
            std::vector<std::string> findings;
            bool const isJournal = file.string().find("-journal.") != std::string::npos;
            if (isJournal && hasJournal)
                fs::rename(file, beside(moved, "-journal"));
            else if (!isJournal && (!DocumentFile::check(file, findings) || !findings.empty()))
                return complain(file.string() + " isn't worth keeping");
            fs::remove(file);
        }
        bool const isGood = look(moved, ended, under);
        fs::remove(beside(moved, "-journal"));
        m_state = state;
        return isGood;
    }

    bool look(fs::path const & file, std::size_t ended, std::size_t under) {
        std::vector<std::string> findings;
        Status const checked = DocumentFile::check(file, findings);
        if (!checked) return complain(checked.toString());
        if (!findings.empty()) return complain(findings.front());
        StrongRef<Asset> asset;
        Status const loaded = DocumentFile::load(file, nullptr, asset);
        if (!loaded) return complain(loaded.toString());
        m_state = stateOf(*asset);
        if (m_state != ended && m_state != under)
            return complain("the file holds neither the old document nor the new one");
        m_within += ended != under;
        ++(m_state == ended ? m_kept : m_renewed);
        return true;
    }

    std::string const m_program; // this one
    fs::path const m_directory;
    fs::path const m_file;
    std::mt19937 m_random;
    unsigned m_kills = 0;
    unsigned m_within = 0;
    unsigned m_kept = 0;
    unsigned m_renewed = 0;
    unsigned m_replaced = 0;
    std::size_t m_state = 0;
    std::chrono::duration<double> m_duration = std::chrono::milliseconds(10);
};

} // namespace

int main(int count, char ** values) {
    std::vector<std::string> const arguments = OS::arguments(count, values);
    auto const number = [&](std::size_t i) {
        return static_cast<unsigned>(std::strtoul(arguments[i].c_str(), nullptr, 10));
    };
    auto const path = [&](std::size_t i) { return fs::path(Text::fromUtf8(arguments[i])); };
    if (arguments.size() == 3 && arguments[0] == "--child") return save(path(1), number(2));

    unsigned const kills = !arguments.empty() ? number(0) : 500;
    fs::path const parent = arguments.size() > 1 ? path(1) : fs::temp_directory_path();
    unsigned const seed = arguments.size() > 2 ? number(2) : std::random_device()();
    fs::path const directory = parent / ("VnCrashSave-" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(directory);
    std::printf("seed %u\n", seed);
    std::string const program = utf8(OS::executableDirectory() / fs::path(values[0]).filename());
    Driver driver(program, directory, seed);
    for (unsigned i = 0; i < kills; ++i)
        if (!driver.killOne()) {
            std::fprintf(stderr, "the file is left in %s\n", directory.string().c_str());
            return 1;
        }
    std::filesystem::remove_all(directory);
    std::printf("%u kills, %u of them within a save: %u files had the document saved last, %u the "
                "one being "
                "saved; %u were moved away, and another took the name\n",
                kills, driver.within(), driver.kept(), driver.renewed(), driver.replaced());
    return 0;
}
