#ifndef VN_TESTS_DATAMODEL_TEMPORARYFILE_H
#define VN_TESTS_DATAMODEL_TEMPORARYFILE_H

#include <atomic>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace Vn::Testing {

// A new name of a document in the directory for temporary files, and no file there.
class TemporaryFile {
public:
    TemporaryFile() {
        static std::atomic<int> s_last{0};
        static unsigned const s_process = std::random_device()();
        m_path = std::filesystem::temp_directory_path()
            / ("VnDocumentTests-" + std::to_string(s_process) + '-' + std::to_string(++s_last)
               + ".vnd");
    }
    ~TemporaryFile() {
        std::error_code error;
        for (std::string const ending : {"", "-journal", ".saving", "-wal", "-shm"})
            for (char const * const kept : {"", ".kept", ".kept.2", ".kept.3"})
                std::filesystem::remove(m_path.string() + ending + kept, error);
    }
    TemporaryFile(TemporaryFile const &) = delete;
    TemporaryFile & operator=(TemporaryFile const &) = delete;

    std::filesystem::path const & path() const noexcept { return m_path; }
    std::string text() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

} // namespace Vn::Testing

#endif
