// What the data model knows of one entity: where it is in its life, and where the logs speak of it.
//
// The phases, and what leads from one to the next.  Only DataModel::Lifetimes changes the phase, by
// the transitions of EntityState, which are named as in this table.
//
//   phase      meaning                                   transitions
//   Alive      in its document                           orphan -> Orphaned   die -> Dying
//   Orphaned   alive, but without a strong reference;    adopt  -> Alive      die -> Dying
//              waits for its turn to be deleted
//   Dying      its deletion hooks are running            depart -> Dead
//   Dead       out of the document; some record names    revive -> Alive      forget -> Forgotten
//              it, so that undo or redo may bring it                          end    -> Ended
//              back
//   Forgotten  out of the document for good; held by     end    -> Ended
//              references that callers keep
//   Ended      nothing refers to it                      (deleted)
//
// An object that never had a strong reference is deleted in any phase.  When the document is
// closed, all that are left become Dead, and those that callers hold live on without a document.
//
// Beside the phase:
//
//   names      how many places in logs and tombs (DataModel::Lifetimes) name the entity.  As long
//              as there are any, the object isn't deleted, whichever references to it callers take
//              and let go.
//   unmade     its making is undone at present: nothing but the redo of that brings it back.
//   log place  the last record about the entity in the log with that number.

#ifndef VN_PLATFORM_DATAMODEL_ENTITYSTATE_H
#define VN_PLATFORM_DATAMODEL_ENTITYSTATE_H

#include <cassert>
#include <cstdint>

namespace Vn::DataModel {

// The state of one entity.  For the data model's own use.
class EntityState {
public:
    // Where the entity is in its life, as in the table above.
    enum EPhase : std::uint8_t { Alive, Orphaned, Dying, Dead, Forgotten, Ended };

    // What else holds of it.
    enum EFlag : std::uint16_t {
        // Made by the loading constructor; for good.  Such an entity is told of no creation, and no
        // log has a record of its coming: it was there before the first step.
        Loaded = 1,
        // Its making is undone.  Only the redo of that, or dropping the step, ends this; until then
        // no replay revives the entity, and nothing may list or own it.
        Unmade = 2,
        // Dead, and there is a tomb for it in Lifetimes.  A tomb is opened once, when the entity is
        // revived, or given up with its object; an entity that is alive has none.
        Entombed = 4,
        // A bracket is open on it.  Its members as they were are kept by the outermost one, and its
        // object isn't deleted before that closes.
        Changing = 8,
        // Has observers, in the table of its document.  Without the flag nothing is looked up.
        Observed = 16,
        // Was loaded from an older version and isn't through with its migration yet.  Set by its
        // constructors, and cleared once onPostMigrate has run.
        Migrating = 32,
        // Its document has versions noted for it that its classes are migrated from.
        Versions = 64,
        // Differs from what was last saved, and stands in the document's list of what the next save
        // writes; once, however often it changes.
        Dirty = 128,
        // Has a row in the file that the document was last loaded from or saved to, which a save
        // deletes once the entity is gone.
        Stored = 256,
        // Was revived by the replay that is running, and is told of that at its end, once; nothing
        // has this flag between two replays.
        Returned = 512
    };

    // The phase, and whether that is one in the document.
    EPhase phase() const noexcept { return m_phase; }
    bool isAlive() const noexcept { return m_phase < Dead; }

    // The transitions.
    void orphan() noexcept { go(Alive, Orphaned); }
    void adopt() noexcept { go(Orphaned, Alive); }
    void die() noexcept {
        assert(m_phase <= Orphaned);
        m_phase = Dying;
    }
    void depart() noexcept { go(Dying, Dead); }
    void revive() noexcept { go(Dead, Alive); }
    void forget() noexcept { go(Dead, Forgotten); }
    void end() noexcept {
        assert(m_phase == Dead || m_phase == Forgotten);
        m_phase = Ended;
    }
    // The document is closed around it.
    void close() noexcept { m_phase = Dead; }

    // The flags.
    bool test(EFlag flag) const noexcept { return (m_flags & flag) != 0; }
    bool testAny(unsigned flags) const noexcept { return (m_flags & flags) != 0; }
    void set(EFlag flag) noexcept { m_flags = static_cast<std::uint16_t>(m_flags | flag); }
    void clear(EFlag flag) noexcept { m_flags = static_cast<std::uint16_t>(m_flags & ~flag); }

    // Who names it.  `unname` answers how many names are left.
    std::uint32_t names() const noexcept { return m_names; }
    void name() noexcept { ++m_names; }
    std::uint32_t unname() noexcept {
        assert(m_names > 0);
        return --m_names;
    }

    // The last record about it, if `isIn` says that it is in that log.
    bool isIn(std::uint32_t log) const noexcept { return m_log == log; }
    std::uint32_t log() const noexcept { return m_log; }
    std::uint32_t record() const noexcept { return m_record; }
    void place(std::uint32_t log, std::uint32_t record) noexcept {
        m_log = log;
        m_record = record;
    }

private:
    void go([[maybe_unused]] EPhase from, EPhase to) noexcept {
        assert(m_phase == from);
        m_phase = to;
    }

    EPhase m_phase = Alive;
    std::uint16_t m_flags = 0;
    std::uint32_t m_names = 0;
    std::uint32_t m_log = 0;
    std::uint32_t m_record = 0;
};

} // namespace Vn::DataModel

#endif
