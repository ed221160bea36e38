// What every contender stores and changes, and how it is measured.

#ifndef VN_BENCHMARKS_DOCUMENT_DOCUMENTWORKLOAD_H
#define VN_BENCHMARKS_DOCUMENT_DOCUMENTWORKLOAD_H

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Vn::Benchmarks {

// One child of the group.  The texts are ASCII, 16 characters each.
struct Record {
    std::wstring text;
    double x;
    double y;
    unsigned number;
    bool flag;
};

// How many children a group has, and how often an operation that can be repeated is timed then.
struct Size {
    std::size_t children;
    int iterations;
};
constexpr Size c_sizes[] = {{10'000, 10}, {100'000, 5}, {1'000'000, 2}};

// The first records of the workload, made once for all contenders and before any time is taken.
std::span<Record const> records(std::size_t count);

// The text in the form that a peer stores, and back.
std::string narrow(std::wstring_view text);
std::wstring widen(std::string_view text);

// What a walk adds up for one child, so that a walk reads every field and the contenders can be
// checked against each other.  The sums over a workload are exact in whatever order they are made.
inline double weight(std::wstring_view text, double x, double y, unsigned number, bool flag) {
    double const last = text.empty() ? 0.0 : static_cast<double>(text.back());
    return static_cast<double>(text.size()) + last + x + y + static_cast<double>(number) +
           (flag ? 1.0 : 0.0);
}

inline double weight(Record const & record) {
    return weight(record.text, record.x, record.y, record.number, record.flag);
}

// What the walk finds in the records, and what it finds when the field x of each has that value.
double expectedWeight(std::span<Record const> records);
double expectedWeight(std::span<Record const> records, double x);

// The bytes in use on the heap, those of the C library's own records included; zero where it can't
// tell.
std::size_t heapInUse();

// Gives back to the system what is free, so that no contender inherits the heap of the one before.
void settleHeap();

// Waits until the file is on the disk.
void waitForDisk(std::filesystem::path const & file);

// A folder for files, gone at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(TemporaryFolder const &) = delete;
    TemporaryFolder & operator=(TemporaryFolder const &) = delete;

    // `name` in the folder.
    std::filesystem::path file(std::string const & name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

} // namespace Vn::Benchmarks

#endif
