// Places on the disk for tests, which go with the object.

#ifndef VN_TESTS_SUPPORT_TEMPORARYDIRECTORY_H
#define VN_TESTS_SUPPORT_TEMPORARYDIRECTORY_H

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

namespace Vn::Testing {

// A path in UTF-8.
inline std::string utf8(std::filesystem::path const & path) {
    std::u8string const text = path.u8string();
    return std::string(text.begin(), text.end());
}

// A new, empty directory.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::random_device random;
        do {
            m_path =
                std::filesystem::temp_directory_path() / ("vn-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(m_path));
    }
    ~TemporaryDirectory() {
        std::error_code ignored; // what was made read-only goes too
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(TemporaryDirectory const &) = delete;
    TemporaryDirectory & operator=(TemporaryDirectory const &) = delete;

    std::filesystem::path const & path() const noexcept { return m_path; }

private:
    std::filesystem::path m_path;
};

// A file in a directory of its own, in which there is room for what stands beside it.
class TemporaryFile {
public:
    // A name at which there is no file.
    TemporaryFile() = default;
    // A file with that text.
    explicit TemporaryFile(std::string const & text) {
        std::ofstream(m_path, std::ios::binary) << text;
    }

    std::filesystem::path const & path() const noexcept { return m_path; }
    // The path in UTF-8.
    std::string text() const { return utf8(m_path); }

private:
    TemporaryDirectory const m_directory;
    std::filesystem::path const m_path = m_directory.path() / "test.vnd";
};

} // namespace Vn::Testing

#endif
