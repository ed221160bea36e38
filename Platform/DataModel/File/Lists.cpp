#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/File/Lists.h"
#include "Platform/DataModel/Limits.h"

namespace Vn::DataModel {

namespace {

// A chunk has this many elements, and ends early once it is large.  On average it ends one time in
// c_oneIn after the least.
constexpr std::size_t c_leastElements = 64;
constexpr std::size_t c_mostElements = 512;
constexpr std::uint64_t c_oneIn = 128;
constexpr std::size_t c_largeBytes = std::size_t{1} << 16;

// Between the numbers of chunks: room for dozens of insertions at one place.
constexpr long long c_gap = 1LL << 40;
// How many more chunks than before may come at one place without all being numbered anew.
constexpr long long c_mostBetween = 1LL << 20;

std::uint64_t hashOf(std::string_view text) noexcept {
    constexpr std::uint64_t c_factor = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = text.size();
    while (!text.empty()) {
        std::uint64_t word = 0;
        std::size_t const taken = std::min<std::size_t>(text.size(), sizeof word);
        for (std::size_t i = 0; i < taken; ++i)
            word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
        hash = (hash ^ word) * c_factor;
        hash ^= hash >> 29;
        text.remove_prefix(taken);
    }
    return hash * c_factor;
}

// Of positions, each at most once, a longest run that rises; `npos` stands for none.
constexpr std::size_t c_none = std::numeric_limits<std::size_t>::max();

std::vector<std::size_t> longestRise(std::vector<std::size_t> const & positions) {
    std::vector<std::size_t> ends; // the place of the lowest end of a run of each length
    std::vector<std::size_t> before(positions.size(), c_none);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (positions[i] == c_none) continue;
        auto const found = std::lower_bound(
            ends.begin(), ends.end(), positions[i],
            [&](std::size_t end, std::size_t position) { return positions[end] < position; });
        if (found != ends.begin()) before[i] = *(found - 1);
        if (found == ends.end())
            ends.push_back(i);
        else
            *found = i;
    }
    std::vector<std::size_t> rise;
    for (std::size_t i = ends.empty() ? c_none : ends.back(); i != c_none; i = before[i])
        rise.push_back(i);
    std::reverse(rise.begin(), rise.end());
    return rise;
}

} // namespace

std::string & ChunkCutter::beginElement() {
    m_chunk += m_elements ? ',' : '[';
    m_elementBegin = m_chunk.size();
    return m_chunk;
}

void ChunkCutter::endElement() {
    ++m_elements;
    if (m_elements < c_leastElements && m_chunk.size() < c_largeBytes) return;
    if (m_elements >= c_mostElements || m_chunk.size() >= c_largeBytes ||
        (hashOf(std::string_view(m_chunk).substr(m_elementBegin)) >> 40) % c_oneIn == 0)
        cut();
}

void ChunkCutter::cut() {
    m_chunk += ']';
    m_chunks.push_back(m_chunk);
    m_chunk.clear();
    m_elements = 0;
}

std::vector<std::string> const & ChunkCutter::chunks() {
    if (m_elements) cut();
    return m_chunks;
}

void ChunkCutter::clear() noexcept {
    m_chunks.clear();
    m_chunk.clear();
    m_elements = 0;
}

ChunkChanges compareChunks(std::vector<StoredChunk> const & stored,
                           std::vector<std::string> const & chunks) {
    // The chunks at both ends that are the same, then those in between.
    std::size_t const shorter = std::min(stored.size(), chunks.size());
    std::size_t head = 0;
    while (head < shorter && stored[head].items == chunks[head]) ++head;
    std::size_t tail = 0;
    while (tail < shorter - head &&
           stored[stored.size() - 1 - tail].items == chunks[chunks.size() - 1 - tail])
        ++tail;
    std::size_t const storedEnd = stored.size() - tail;
    std::size_t const end = chunks.size() - tail;

    // The n-th row of a text goes with the n-th chunk of that text.
    std::unordered_map<std::string_view, std::vector<std::size_t>> places;
    for (std::size_t i = storedEnd; i-- > head;) places[stored[i].items].push_back(i);
    std::vector<std::size_t> partners(end - head, c_none);
    for (std::size_t i = head; i < end; ++i) {
        auto const found = places.find(chunks[i]);
        if (found == places.end() || found->second.empty()) continue;
        partners[i - head] = found->second.back();
        found->second.pop_back();
    }
    std::vector<std::size_t> anchors = longestRise(partners);

    ChunkChanges changes;
    auto const renumbered = [&] {
        changes = {};
        for (StoredChunk const & row : stored) changes.erased.push_back(row.number);
        long long const gap =
            std::min(c_gap, Limits::c_chunkNumber / 2 / static_cast<long long>(chunks.size() + 1));
        for (std::size_t i = 0; i < chunks.size(); ++i)
            changes.inserted.push_back({static_cast<long long>(i) * gap, i});
        return changes;
    };
    if (stored.empty()) return renumbered();

    std::size_t row = head;   // the next row
    std::size_t chunk = head; // and the next chunk
    for (std::size_t a = 0; a <= anchors.size(); ++a) {
        bool const isLast = a == anchors.size();
        std::size_t const rowStop = isLast ? storedEnd : partners[anchors[a]];
        std::size_t const chunkStop = isLast ? end : head + anchors[a];
        while (row < rowStop && chunk < chunkStop)
            changes.updated.push_back({stored[row++].number, chunk++});
        while (row < rowStop) changes.erased.push_back(stored[row++].number);
        if (chunk < chunkStop) {
            auto const more = static_cast<long long>(chunkStop - chunk);
            if (more > c_mostBetween) return renumbered();
            bool const isBounded = rowStop < stored.size();
            long long step = c_gap;
            long long low = 0;
            if (row > 0) {
                low = stored[row - 1].number;
                if (isBounded) step = std::min(step, (stored[rowStop].number - low) / (more + 1));
            } else
                low = stored[rowStop].number - c_gap * (more + 1);
            if (step < 1 || low <= -Limits::c_chunkNumber ||
                low >= Limits::c_chunkNumber - c_gap * (more + 1))
                return renumbered();
            while (chunk < chunkStop) changes.inserted.push_back({low += step, chunk++});
        }
        if (!isLast) {
            ++row;
            ++chunk;
        }
    }
    return changes;
}

ListWriter::ListWriter(Database const & database)
    : m_database(database), m_insert(database, "INSERT INTO lists VALUES(?, ?, ?, ?)"),
      m_select(database,
               "SELECT chunk, items FROM lists WHERE entity=? AND member=? ORDER BY chunk"),
      m_update(database, "UPDATE lists SET items=? WHERE entity=? AND member=? AND chunk=?"),
      m_erase(database, "DELETE FROM lists WHERE entity=? AND member=? AND chunk=?"),
      m_eraseAll(database, "DELETE FROM lists WHERE entity=?") {}

void ListWriter::insert(unsigned long long entity, int member,
                        std::vector<std::string> const & chunks) {
    if (chunks.empty()) return;
    m_insert.bind(1, static_cast<long long>(entity));
    m_insert.bind(2, static_cast<long long>(member));
    for (ChunkChanges::Row const & row : compareChunks({}, chunks).inserted) {
        m_insert.bind(3, row.number);
        m_insert.bindText(4, chunks[row.chunk]);
        m_insert.run();
    }
}

void ListWriter::replace(unsigned long long entity, int member,
                         std::vector<std::string> const & chunks) {
    auto const id = static_cast<long long>(entity);
    std::vector<StoredChunk> stored;
    m_select.bind(1, id);
    m_select.bind(2, static_cast<long long>(member));
    while (m_select.step()) {
        stored.push_back({m_select.integer(0), std::string(m_select.bytes(1))});
        if (stored.back().number <= -Limits::c_chunkNumber ||
            stored.back().number >= Limits::c_chunkNumber)
            m_database.damaged(localized("the number of a chunk is out of range"));
    }
    m_select.reset();

    ChunkChanges const changes = compareChunks(stored, chunks);
    for (long long const number : changes.erased) {
        m_erase.bind(1, id);
        m_erase.bind(2, static_cast<long long>(member));
        m_erase.bind(3, number);
        m_erase.run();
    }
    for (ChunkChanges::Row const & row : changes.updated) {
        m_update.bindText(1, chunks[row.chunk]);
        m_update.bind(2, id);
        m_update.bind(3, static_cast<long long>(member));
        m_update.bind(4, row.number);
        m_update.run();
    }
    for (ChunkChanges::Row const & row : changes.inserted) {
        m_insert.bind(1, id);
        m_insert.bind(2, static_cast<long long>(member));
        m_insert.bind(3, row.number);
        m_insert.bindText(4, chunks[row.chunk]);
        m_insert.run();
    }
}

void ListWriter::erase(unsigned long long entity) {
    m_eraseAll.bind(1, static_cast<long long>(entity));
    m_eraseAll.run();
}

} // namespace Vn::DataModel
