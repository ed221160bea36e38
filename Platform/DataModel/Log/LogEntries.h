// What the recorder and the replay share: how records are written to a log, and given up.

#ifndef VN_PLATFORM_DATAMODEL_LOG_LOGENTRIES_H
#define VN_PLATFORM_DATAMODEL_LOG_LOGENTRIES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Platform/DataModel/Log/ChangeLog.h"
#include "Platform/DataModel/Log/EntityAccess.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"

namespace Vn {
class Segment;
}

namespace Vn::DataModel {

class Lifetimes;

inline EntityState & stateOf(Entity & entity) noexcept { return EntityAccess::state(entity); }
inline std::vector<Leaf> const & leavesOf(Entity & entity) {
    return entity.metaType()->layout().leaves();
}

// Whether a leaf stands in a mask of leaves, and putting it there.
inline bool isRecorded(std::uint64_t leaves, std::size_t leaf) noexcept {
    return leaf < c_maskedLeaves && (leaves >> leaf & 1);
}
inline void note(std::uint64_t & leaves, std::size_t leaf) noexcept {
    if (leaf < c_maskedLeaves) leaves |= std::uint64_t{1} << leaf;
}

// The head of a value in a Changed record.
inline std::uint64_t entry(std::size_t leaf, std::size_t words) noexcept {
    return leaf | static_cast<std::uint64_t>(words) << 32;
}
inline std::size_t entryLeaf(std::uint64_t head) noexcept { return head & 0xFFFFFFFFU; }
inline std::size_t entryWords(std::uint64_t head) noexcept { return head >> 32; }

// Appends the value of a member with its head.  If memory runs out, nothing is appended.
void keepEntry(Entity & entity, std::size_t index, Leaf const & leaf, Asset const & asset,
               WordBuffer & words);
// Whether a member is still what the kept value says.  Numbers, the most frequent kind, are
// compared here.
inline bool isStill(Entity & entity, Leaf const & leaf, std::uint64_t const * value) {
    void const * const present = field(entity, leaf);
    return leaf.numberBytes ? numberOf(leaf, present) == *value : isKept(leaf, present, value);
}
// Of values with their heads, which stand at the end of `words` from `begin` on, keeps those for
// which `isWanted(number, leaf, value)` says so, and takes the others back.
template <class IsWanted>
void keepEntries(std::vector<Leaf> const & leaves, WordBuffer & words, std::size_t begin,
                 IsWanted && isWanted) {
    std::uint64_t const * place = words.data() + begin;
    std::uint64_t const * const end = words.data() + words.size();
    std::uint64_t * kept = words.data() + begin; // they move together at the beginning
    while (place < end) {
        std::size_t const count = 1 + entryWords(*place);
        std::size_t const i = entryLeaf(*place);
        Leaf const & leaf = leaves[i];
        if (isWanted(i, leaf, place + 1)) {
            if (kept != place) std::memmove(kept, place, count * sizeof(*kept));
            kept += count;
        } else if (leaf.isOwning) {
            auto * value = const_cast<std::uint64_t *>(place + 1);
            release(leaf, value);
        }
        place += count;
    }
    words.truncate(static_cast<std::size_t>(kept - words.data()));
}
// Takes values with their heads back, which stand at the end of `words` from `begin` on.
void releaseEntries(std::vector<Leaf> const & leaves, WordBuffer & words,
                    std::size_t begin) noexcept;
// Calls `visit` with each entity that strong references in such values lead to.
void visitEntries(std::vector<Leaf> const & leaves, std::uint64_t const * begin,
                  std::uint64_t const * end, VisitEntity visit, void * context);

// A record that goes on where the last about the entity in the log ended, and its place there.
Record continued(Entity & entity, ChangeLog & log);
// Calls `visit` with each entity that a record names, its own last.
void visitNames(ChangeLog & log, std::size_t end, VisitEntity visit, void * context);
// Has a record name what it leads to.
void nameAll(ChangeLog & log, std::size_t end);
// Writes the record after its payload, which begins at `begin`.  It names what the payload leads
// to, and its entity, whose place it becomes.  Inline, so that the record is put together where it
// stands in the end.
inline void append(ChangeLog & log, std::size_t begin, Record const & record) {
    bool const hasPayload = log.end() > begin;
    std::size_t const end = log.close(begin, record);
    EntityState & state = stateOf(*record.entity);
    if (hasPayload && log.isOwning())
        nameAll(log, end);
    else
        state.name();
    state.place(log.number(), static_cast<std::uint32_t>(end));
}
// Gives a log up: what its words own is released, and what it names is named no more.
void drop(ChangeLog & log, Lifetimes & lifetimes) noexcept;

// Records that a root is about to change.  `old` is the present one, or null; `place` is its place,
// or where it would be.
void recordRoot(ChangeLog & log, Segment & segment, std::string const & key, std::size_t place,
                Entity * old);

// Fetches the entity of a record into the cache, while something else is looked at.  A call that
// isn't inlined would be dropped, since it changes nothing.
[[gnu::always_inline]] inline void prefetchEntity(ChangeLog & log, std::size_t end) noexcept {
    if (!end) return;
    auto const entity = reinterpret_cast<std::uintptr_t>(log.record(end).entity);
    constexpr std::uintptr_t c_line = 64;
    for (std::uintptr_t i = 0; i < 3; ++i)
        __builtin_prefetch(reinterpret_cast<void const *>(entity + i * c_line));
}

// Fetches the beginnings of the entities of a log's records some records ahead of a walk from its
// end to its beginning, which takes a step for each record.
class EntitiesAhead {
public:
    explicit EntitiesAhead(ChangeLog & log) noexcept : m_log(log), m_at(log.end()) {
        for (int i = 0; i < c_records && m_at; ++i) step();
    }
    void step() noexcept {
        if (!m_at) return;
        __builtin_prefetch(m_log.record(m_at).entity);
        m_at = m_log.before(m_at);
    }

private:
    static constexpr int c_records = 8;
    ChangeLog & m_log;
    std::size_t m_at;
};

} // namespace Vn::DataModel

#endif
