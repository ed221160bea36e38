// The floor: a vector of structs, without transactions or undo, and its fields one after the other
// in a file.

#include <cstring>
#include <fstream>

#include "Benchmarks/Document/DocumentBenchmarks.h"

namespace Vn::Benchmarks {

namespace {

template <class Value>
void put(std::string & bytes, Value value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof value);
}

template <class Value>
Value take(char const *& from) {
    Value value;
    std::memcpy(&value, from, sizeof value);
    from += sizeof value;
    return value;
}

class VectorDocument {
public:
    static constexpr char const * c_name = "vector";
    static constexpr char const * c_extension = ".bin";
    static constexpr bool c_firstSaveWaits = false;
    static constexpr bool c_laterSaveWaits = false;

    void create(std::span<Record const> source) {
        for (Record const & record : source) m_records.push_back(record);
    }

    double walk() const { return expectedWeight(m_records); }

    void changeAll(double x) {
        for (Record & record : m_records) record.x = x;
    }

    void changeOne(std::size_t i, double x) { m_records[i].x = x; }

    void saveAs(std::filesystem::path const & file) {
        m_file = file;
        save();
    }

    void save() const {
        std::string bytes;
        put(bytes, m_records.size());
        for (Record const & record : m_records) {
            put(bytes, static_cast<unsigned>(record.text.size()));
            bytes += narrow(record.text);
            put(bytes, record.x);
            put(bytes, record.y);
            put(bytes, record.number);
            put(bytes, record.flag);
        }
        std::ofstream(m_file, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    void load(std::filesystem::path const & file) {
        m_file = file;
        std::string bytes(std::filesystem::file_size(file), '\0');
        std::ifstream(file, std::ios::binary)
            .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        char const * from = bytes.data();
        auto const count = take<std::size_t>(from);
        m_records.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            Record record;
            auto const length = take<unsigned>(from);
            record.text = widen({from, length});
            from += length;
            record.x = take<double>(from);
            record.y = take<double>(from);
            record.number = take<unsigned>(from);
            record.flag = take<bool>(from);
            m_records.push_back(std::move(record));
        }
    }

private:
    std::vector<Record> m_records;
    std::filesystem::path m_file;
};

[[maybe_unused]] bool const s_registered = [] {
    registerCreation<VectorDocument>();
    registerChangeAll<VectorDocument>();
    registerFiles<VectorDocument>();
    return true;
}();

} // namespace

} // namespace Vn::Benchmarks
