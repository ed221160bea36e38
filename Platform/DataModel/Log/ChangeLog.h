// The record of changes from which the state before them can be restored.
//
// A log is a row of words of eight bytes, written forwards and read backwards: each record is its
// payload with a Record after it.  Payloads:
//
//   Born         none; the entity came
//   Unborn       none; the making of the entity was undone
//   Changed      for each leaf: its number and the words of its kept value, in one word, then the
//                value
//   Inserted     leaf, index, count
//   Erased       leaf, index, count, then the elements
//   Root         segment, place, length of the key, key; what was the root stands in m_leaves
//   Blank        of an entity that was destroyed without ever having had an owner
//
// Each record names its entity, and each strong reference in a payload names its target, as
// EntityState counts names: what a log names stays valid until the log is dropped.  The deaths of
// entities aren't recorded.  They follow from the references: what nothing owns dies, and what a
// replay gives an owner comes back.

#ifndef VN_PLATFORM_DATAMODEL_LOG_CHANGELOG_H
#define VN_PLATFORM_DATAMODEL_LOG_CHANGELOG_H

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "Platform/DataModel/Log/WordBuffer.h"

namespace Vn {
class Entity;
}

namespace Vn::DataModel {

enum class ERecord : std::uint8_t { Born, Unborn, Changed, Inserted, Erased, Root, Blank };

// What stands after each payload.
struct Record {
    Entity * entity = nullptr;
    std::uint32_t words = 0;       // of the payload
    std::uint32_t previous = 0;    // the record before about the same entity, and its log
    std::uint32_t previousLog = 0; // 0 if there is none
    ERecord kind = ERecord::Born;
    std::uint8_t types = 0;  // of the changes, combined
    bool isBorn = false;     // this record or one before it in its chain says that the entity came
    bool isReplayed = false; // has had its turn in the replay that is running
    // Which of the first 63 leaves stand in Changed records of the chain; of a Root record the
    // entity.
    std::uint64_t leaves = 0;
};

inline constexpr std::size_t c_recordWords = sizeof(Record) / sizeof(std::uint64_t);
static_assert(sizeof(Record) % sizeof(std::uint64_t) == 0);

// Leaves with a number from here on aren't looked up in Record::m_leaves.
inline constexpr int c_maskedLeaves = 63;

class ChangeLog {
public:
    explicit ChangeLog(std::uint32_t number) noexcept : m_number(number) {}

    std::uint32_t number() const noexcept { return m_number; }
    bool empty() const noexcept { return m_words.size() == 0; }
    // Where the next record will be read from, after it was written; 0 if there is none.
    std::size_t end() const noexcept { return m_words.size(); }
    WordBuffer & words() noexcept { return m_words; }
    WordBuffer const & words() const noexcept { return m_words; }

    // A record by the place after it.
    Record & record(std::size_t end) noexcept {
        return *reinterpret_cast<Record *>(m_words.data() + end - c_recordWords);
    }
    std::uint64_t * payload(std::size_t end) noexcept {
        return m_words.data() + end - c_recordWords - record(end).words;
    }
    // The place after the record before.
    std::size_t before(std::size_t end) noexcept { return end - c_recordWords - record(end).words; }

    // Writes the record after the payload that begins at `begin`; returns the place after it.
    std::size_t close(std::size_t begin, Record const & record) {
        auto const words = static_cast<std::uint32_t>(m_words.size() - begin);
        auto & written = *new (m_words.append(c_recordWords)) Record(record);
        written.words = words;
        return m_words.size();
    }

    // Whether there is one record, as in most steps.
    bool isOne() noexcept { return !empty() && before(end()) == 0; }

    // The record is about nothing any more.
    void blank(std::size_t end) noexcept {
        record(end).entity = nullptr;
        record(end).kind = ERecord::Blank;
    }

    // The bytes of the log.
    std::size_t bytes() const noexcept { return sizeof(*this) + m_words.heapBytes(); }

    // Whether a record is about something that is saved.
    bool isPersistent() const noexcept { return m_bPersistent; }
    void persistent() noexcept { m_bPersistent = true; }
    // Whether words own or name what they refer to, beside the entities that the records are about.
    bool isOwning() const noexcept { return m_bOwning; }
    void owning() noexcept { m_bOwning = true; }
    // Whether there is anything else than numbers that changed, or a member that may stand in it
    // twice.  Without, the log is replayed by an exchange of its words with the fields, in any
    // order.
    bool isMixed() const noexcept { return m_bMixed; }
    void mixed() noexcept { m_bMixed = true; }

    // Becomes an empty log with another number.  What the words own must have been given up.
    void reset(std::uint32_t number) noexcept {
        m_words.truncate(0);
        m_number = number;
        m_bPersistent = false;
        m_bOwning = false;
        m_bMixed = false;
    }

    // Becomes what another log is, and the other what this is.
    void swap(ChangeLog & other) noexcept {
        m_words.swap(other.m_words);
        std::swap(m_number, other.m_number);
        std::swap(m_bPersistent, other.m_bPersistent);
        std::swap(m_bOwning, other.m_bOwning);
        std::swap(m_bMixed, other.m_bMixed);
    }

private:
    WordBuffer m_words;
    std::uint32_t m_number;
    bool m_bPersistent = false;
    bool m_bOwning = false;
    bool m_bMixed = false;
};

} // namespace Vn::DataModel

#endif
