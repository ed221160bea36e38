// Changes, transactions, undo and redo.
//
// Definitions.
//
//   "Bracket"      an EntityChange.  The outermost bracket of an entity is the one that was open on it
//                  first; brackets on other entities may stand between.
//   "Log"          the record of changes from which the state before them can be restored: what members
//                  were, which entities came, which went.
//   "Recording"    a log is open, and what changes goes into it.  That is so within a transaction and
//                  within a replay.
//   "Replay"       restoring the state before a log, for undo, redo or abort.  While a log is replayed
//                  another is recorded, the inverse, which restores the state after it.  A log of
//                  nothing but numbers exchanges them with the fields, and so becomes the inverse.
//   "Alive"        an entity that belongs to the document at present.  "Kept": one that doesn't, and
//                  whose object a log owns.
//   "Orphan"       an entity whose last strong reference has gone and whose deletion is still to come.
//
// Invariants.  The test that guards each stands in brackets.
//
//   (H1) Replaying a log and then its inverse leaves every member of every entity as it was, and the
//        same entities alive under the same ids.  [HistoryTests, undoAndRedoRestoreEveryKindOfMember;
//        RandomOperationsTests, agreesWithTheModelAfterEveryStep]
//   (H2) Every entity that a log of the history mentions is alive, or is kept by exactly one log.
//        [HistoryTests, aKeptEntityOutlivesItsReferences; all tests under the address sanitizer]
//   (H3) Within one log a member of an entity is recorded once, as it was when it first changed;
//        members of entities that came within that log aren't recorded at all.
//        [HistoryTests, aMemberIsRecordedOnceWithinATransaction]
//   (H4) The size of a log and the time of a replay follow the changes that it records, not the
//        document.  [HistoryTests, aLogFollowsTheSizeOfTheChange]
//   (H5) No replay begins while a transaction or a replay is open, and no transaction while a replay
//        is.  [HistoryTests, nothingBeginsWithinAReplay]
//   (H6) Within a replay each entity is told once before and once after all of its changes, whatever
//        brackets made them.  [HistoryTests, aReplayTellsEachEntityOnce]
//   (H7) An orphan is deleted before the operation returns that made it one, or at the end of the
//        replay if nothing refers to it by then; never from within another deletion.
//        [HistoryTests, aLongChainIsDeletedOnASmallStack]
//   (H8) The document is clean exactly if its state is the one that was marked last.
//        [HistoryTests, theCleanMarkIsFoundAgain]
//   (H9) Whichever allocation fails, the document is afterwards what it was or what it was to become,
//        and the history fits or is given up; or isUsable is false.  [OutOfMemoryTests]
//
// States.
//
//                 begin                     begin (nested)
//      +-------+ ------> +-------------+ ------> ...
//      | quiet |         | transaction |
//      +-------+ <------ +-------------+
//       |  ^   commit           | abort, or an exception leaves the transaction
//  undo,|  |                    v
//  redo |  |             +-------------+
//       |  +-------------|   replay    |
//       +--------------->+-------------+
//
// In "quiet" nothing is recorded: a change made there can't be undone, and ends the history, since its
// logs would no longer fit.  The one exception is the death of an entity whose last reference a caller
// held beyond its transaction; it is added to the last step.  In "transaction" logs stand one in
// another; a nested one that commits is added to the one around it.  In "replay" hooks run with
// TransactReplay; what they change directly isn't recorded, since the replay restores it anyway.  What
// it restores by places of a list keeps within the list, whatever a hook made of that.

#ifndef VN_PLATFORM_DATAMODEL_CHANGEHISTORY_H
#define VN_PLATFORM_DATAMODEL_CHANGEHISTORY_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;
class Entity;
class EntityChange;
class MemberSplices;
class Segment;

namespace DataModel {
class ChangeLog;
class WordBuffer;
struct Record;
}

// The changes of one document.  Invariants and states stand at the top of this file.
class VN_DATAMODEL_API ChangeHistory {
public:
    // For the document that owns it.
    explicit ChangeHistory(Asset & asset);
    ~ChangeHistory();
    ChangeHistory(ChangeHistory const &) = delete;
    ChangeHistory & operator=(ChangeHistory const &) = delete;

    // Takes back the last step, or does again the one taken back last.  A failure says why nothing was
    // done: there is no such step, or a transaction or a replay is open.  What a hook throws goes on
    // to the caller once the replay is complete.
    Status undo();
    Status redo();
    bool canUndo() const noexcept;
    bool canRedo() const noexcept;

    // The names of the steps that undo takes back, the next one first, and of those that redo does.
    std::vector<std::wstring> undoNames() const;
    std::vector<std::wstring> redoNames() const;
    std::size_t undoSteps() const noexcept { return m_undo.size(); }
    std::size_t redoSteps() const noexcept { return m_redo.size(); }

    // Forgets all steps.  Within a transaction or a replay nothing happens.
    void clear();

    // How many steps, and how many bytes with the entities that are kept, the history may have; 0 is
    // without limit.  The oldest steps go first, and the last is never given up.  Without being set
    // it is 0 and 1 GiB.
    void stepLimit(std::size_t steps);
    std::size_t stepLimit() const noexcept { return m_stepLimit; }
    void byteLimit(std::size_t bytes);
    std::size_t byteLimit() const noexcept { return m_byteLimit; }
    // The bytes at present.
    std::size_t bytes() const noexcept;

    // Whether the state of the document is the one that was marked last; a new document is clean.
    void markClean() noexcept;
    bool isClean() const noexcept;

    // False once memory ran out in the middle of a replay, or before a transaction that had to be taken
    // back: the document is then neither the one before nor the one after, the history is given up,
    // and undo, redo and saving are refused.
    bool isUsable() const noexcept { return m_bUsable; }

    // The states, as at the top of this file.
    bool isInTransaction() const noexcept { return !m_open.empty(); }
    bool isReplaying() const noexcept { return m_bReplaying; }

private:
    friend class Asset;
    friend class DocumentFile;
    friend class Entity;
    friend class EntityChange;
    friend class MemberSplices;
    friend class Segment;
    friend class Transaction;

    struct Step;

    // Transactions.
    bool begin(std::wstring_view name);
    void commit();
    void abort();

    // What brackets do.
    void openBracket(EntityChange & change);
    void keepMembers(EntityChange & change);
    void closeBracket(EntityChange & change);
    void record(EntityChange const & change);
    void keepDifferences(EntityChange const & change, DataModel::ChangeLog * log,
                         DataModel::Record & record);
    EntityChange * outermostBracket(Entity const & entity) const noexcept;

    // What happens to entities.
    void born(Entity & entity);
    void unborn(Entity & entity) noexcept; // destroyed without ever having been deleted
    void orphaned(Entity & entity) noexcept;
    // Within a replay both throw if memory runs out, and else give up the history.
    void kill(Entity & entity, DataChange::ETransact transact);
    void killOrphans(DataChange::ETransact transact);
    // Records or notes a death; whether the object is kept.
    bool recordDeath(Entity & entity);
    void revive(Entity & entity, std::uint64_t const * tomb);
    void letGo(Entity & entity) noexcept; // of a dead one that no log keeps any more
    void deleteDead(Entity & entity) noexcept;
    void rootChanging(Segment & segment, std::string const & key, std::size_t place, Entity * old);

    // Replays a log, which becomes its inverse; or, for an abort, without one.
    void replay(DataModel::ChangeLog & log, bool undoing);
    void replayForAbort(DataModel::ChangeLog & log);
    template <class Work>
    void duringReplay(DataModel::ChangeLog * inverse, Work work);
    void restoreAll(DataModel::ChangeLog & log);
    void exchangeAll(DataModel::ChangeLog & log, bool undoing);
    // A record that goes on where the last about the entity in the log ended, and its place there.
    static DataModel::Record continued(Entity & entity, DataModel::ChangeLog & log);
    static void append(DataModel::ChangeLog & log, std::size_t begin,
                       DataModel::Record const & record);
    // Keeps the first exception that a hook of a replay throws, until the replay is complete.
    void hookThrew() noexcept;
    void rethrowOfHook();
    void exchangeEntity(DataModel::ChangeLog & log, std::size_t record);
    void replayEntity(DataModel::ChangeLog & log, std::size_t record);
    // Records what undoes the replay of a record about an entity.
    void recordInverse(Entity & entity, DataModel::Record const & record,
                       std::uint64_t const * payload);
    void replayRoot(DataModel::ChangeLog & log, std::size_t record);
    Status move(bool undoing);

    // Something changed that no log records.
    void changedUnrecorded() noexcept;
    // The document differs from the marked state, whatever is undone or redone, until a state is marked
    // again: something changed that is no step.
    void modified() noexcept { m_bModified = true; }
    std::uint32_t nextLogNumber() noexcept;
    // The number of the leaf of a vector member whose splices can be recorded; -1 if it is none.
    static int leafOf(Entity & entity, void const * member);
    bool splicesAnnounced(Entity const & entity, int leaf) const noexcept;
    void spliced(MemberSplices const & splices, bool inserted, std::size_t index, std::size_t count);
    void enforceLimits();
    void drop(DataModel::ChangeLog & log) noexcept;
    void dropOldest() noexcept;
    void dropRedo() noexcept;
    // Memory ran out for the record of what can't be refused: no state before can be reached.
    void lose() noexcept;
    // Memory ran out in a replay.  `inverse` may be null.
    void giveUp(DataModel::ChangeLog & log, DataModel::ChangeLog * inverse) noexcept;
    // Gives up all logs but those of a replay, and then `last`, which may be null.
    void dropAll(DataModel::ChangeLog * last) noexcept;
    // Has orphans deleted that waited for the end of something, unless something else still runs.
    void killLeftOrphans() noexcept;
    std::uint64_t state() const noexcept;

    Asset & m_asset;
    DataModel::ChangeLog * m_pLog = nullptr;     // of the innermost transaction
    DataModel::ChangeLog * m_pInverse = nullptr; // of the replay
    std::unique_ptr<DataModel::ChangeLog> m_pSpare;
    EntityChange * m_pInnermost = nullptr;
    MemberSplices * m_pSplices = nullptr;
    std::unique_ptr<DataModel::WordBuffer> m_pScratch; // members as they were when brackets opened
    std::shared_ptr<std::wstring const> m_pName; // of the step begun last
    std::vector<std::unique_ptr<Step>> m_open;
    std::deque<std::unique_ptr<Step>> m_undo;
    std::vector<std::unique_ptr<Step>> m_redo;
    std::vector<Entity *> m_orphans;
    std::vector<StrongRef<Entity>> m_revived;
    std::vector<Entity *> m_killed; // by an abort, and to be deleted behind it
    std::exception_ptr m_hookFailure;
    bool m_bReplaying = false;
    bool m_bKilling = false;
    bool m_bDropping = false;
    bool m_bUsable = true;
    bool m_bModified = false; // other than by steps, since the state was marked
    bool m_bLost = false; // memory ran out while a change was recorded
    bool m_bUnlisted = false; // there are orphans that m_orphans had no room for
    std::size_t m_stepLimit = 0;
    std::size_t m_byteLimit = std::size_t{1} << 30;
    std::size_t m_bytes = 0; // of the steps in m_undo and m_redo
    std::uint64_t m_lastState = 0;
    std::uint64_t m_baseState = 0;
    std::uint64_t m_cleanState = 0;
    std::uint32_t m_lastLog = 0;
};

// A stretch of work that is undone as one step.
//
//     Transaction transaction(asset, L"Rename");
//     ...
//     transaction.commit();
//
// Without `commit`, and if an exception leaves it, everything within is taken back.  Transactions
// nest; one within another becomes a part of that.  One in which nothing changed leaves no step.
class VN_DATAMODEL_API Transaction {
public:
    // `name` is for the user.  Within a replay the transaction has no effect.
    Transaction(Asset & asset, std::wstring_view name);
    ~Transaction();
    Transaction(Transaction const &) = delete;
    Transaction & operator=(Transaction const &) = delete;

    // Ends it and keeps what was done, or takes it back.  Once ended, both do nothing.  A commit that
    // has no memory throws std::bad_alloc and leaves the transaction open; an abort that has none
    // throws it too, and the history isn't usable any more.  If memory ran out for the record of what
    // couldn't be refused, a commit keeps what was done, and the history ends.
    void commit();
    void abort();
    // Whether it has been ended.
    bool isOpen() const noexcept { return m_pHistory != nullptr; }

private:
    ChangeHistory * m_pHistory;
};

} // namespace Vn

#endif
