#include "Benchmarks/Document/DocumentWorkload.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <system_error>

#ifdef __unix__
#include <fcntl.h>
#include <unistd.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

Vn::Benchmarks::Record makeRecord(std::size_t i) {
    char text[32];
    std::snprintf(text, sizeof text, "Child %010zu", i);
    double const value = static_cast<double>(i);
    return {Vn::Benchmarks::widen(text), value * 0.5, value * 0.25,
            static_cast<unsigned>(i * 7 % 1000), i % 3 == 0};
}

} // namespace

std::span<Vn::Benchmarks::Record const> Vn::Benchmarks::records(std::size_t count) {
    static std::vector<Record> const s_records = [] {
        std::vector<Record> made;
        std::size_t const most = std::ranges::max(c_sizes, {}, &Size::children).children;
        made.reserve(most);
        for (std::size_t i = 0; i < most; ++i) made.push_back(makeRecord(i));
        return made;
    }();
    return std::span<Record const>(s_records).first(count);
}

std::string Vn::Benchmarks::narrow(std::wstring_view text) {
    std::string result(text.size(), '\0');
    std::ranges::transform(text, result.begin(), [](wchar_t c) { return static_cast<char>(c); });
    return result;
}

std::wstring Vn::Benchmarks::widen(std::string_view text) {
    return std::wstring(text.begin(), text.end());
}

double Vn::Benchmarks::expectedWeight(std::span<Record const> records) {
    double sum = 0.0;
    for (Record const & record : records) sum += weight(record);
    return sum;
}

double Vn::Benchmarks::expectedWeight(std::span<Record const> records, double x) {
    double sum = 0.0;
    for (Record const & record : records) sum += weight(record) - record.x + x;
    return sum;
}

std::size_t Vn::Benchmarks::heapInUse() {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 33)
    struct mallinfo2 const info = mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

void Vn::Benchmarks::settleHeap() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

void Vn::Benchmarks::waitForDisk([[maybe_unused]] std::filesystem::path const & file) {
#ifdef __unix__
    int const descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
#endif
}

Vn::Benchmarks::TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        m_path = std::filesystem::temp_directory_path() /
                 ("document-benchmark-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
}

Vn::Benchmarks::TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}
