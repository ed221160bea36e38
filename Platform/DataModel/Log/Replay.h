// Restores the state before a log, and records the inverse.
//
// A replay has these stages:
//
//   1. Entities that came within the log are marked as unmade, and those whose making was undone no
//      longer.
//   2. What the log gives an owner, and what it has a record about, is revived if it is dead:
//      first, so that whatever refers to it finds it.
//   3. From the last record to the first, members and roots become what they were.  Entities that
//      came within the log end.
//   4. What has no owner then ends.
//
// A log of nothing but numbers is replayed by an exchange of its words with the fields.

#ifndef VN_PLATFORM_DATAMODEL_LOG_REPLAY_H
#define VN_PLATFORM_DATAMODEL_LOG_REPLAY_H

#include <cstddef>
#include <cstdint>

#include "Platform/DataModel/Log/ChangeLog.h"
#include "Platform/DataModel/Log/Recorder.h"

namespace Vn {
class Asset;
class Entity;
} // namespace Vn

namespace Vn::DataModel {

class Lifetimes;

// One replay of one log.  What it throws is std::bad_alloc; what hooks throw, Lifetimes keeps.
class Replay {
public:
    // `inverse` is null for an abort.
    Replay(Asset & asset, Recorder & recorder, Lifetimes & lifetimes, ChangeLog & log,
           ChangeLog * inverse) noexcept
        : m_asset(asset), m_recorder(recorder), m_lifetimes(lifetimes), m_log(log),
          m_pInverse(inverse) {
        m_recorder.inverse(inverse);
    }
    ~Replay() { m_recorder.inverse(nullptr); }
    Replay(Replay const &) = delete;
    Replay & operator=(Replay const &) = delete;

    // Restores the state before the log, whatever it holds.  The inverse of each change stands in
    // the other log before the change is made: if memory runs out, what was done can be told.
    void restore(bool undoing);
    // Exchanges; the log becomes its inverse.  The entities have their turns in the order in which
    // an inverse would give them.
    void exchange(bool undoing);

private:
    // Marks what the log says was made as unmade, or the other way round.  It comes before anything
    // is revived, so that nothing comes back whose making is being undone.
    void markUnmade();
    void unmade(Entity & entity);
    // Revives whatever the log's values lead to, so that no reference is restored to a dead entity.
    void reviveTargets();
    // Goes through the records from the last to the first; each has one turn.
    void restoreRecords(bool areMarked);
    // Restores all that the log has about the entity of its last record, within one bracket, so
    // that observers hear of the entity once.
    void restoreEntity(std::size_t last);
    // Gives a key the root that it had; a root that comes back takes the place that it had.
    void restoreRoot(std::size_t end);
    // As restoreEntity, where each value changes places with the field.
    void exchangeEntity(std::size_t last);
    // Records the present values of what a record is about to restore.
    void recordInverse(Entity & entity, Record const & record, std::uint64_t const * payload);
    void recordPresence(Entity & entity, ERecord kind);
    // Revives what is dead and may come back.
    void revive(Entity & entity);

    Asset & m_asset;
    Recorder & m_recorder;
    Lifetimes & m_lifetimes;
    ChangeLog & m_log;
    ChangeLog * const m_pInverse;
};

} // namespace Vn::DataModel

#endif
