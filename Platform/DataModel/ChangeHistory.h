// Changes, transactions, undo and redo.
//
// Definitions.
//
//   "Bracket"      an EntityChange.  The outermost bracket of an entity is the one that was open on
//                  it first; brackets on other entities may stand between.
//   "Log"          the record of changes from which the state before them can be restored: what
//                  members were, which entities came, which were roots.
//   "Recording"    a log is open, and what changes goes into it.  That is so within a transaction
//                  and within a replay.
//   "Replay"       restoring the state before a log, for undo, redo or abort.  While a log is
//                  replayed another is recorded, the inverse, which restores the state after it.  A
//                  log of nothing but numbers exchanges them with the fields, and so becomes the
//                  inverse.
//   "Alive"        an entity that belongs to the document at present.  EntityState tells the phases
//                  of a life and what leads from one to the next.
//   "Names"        the places in logs that lead to an entity: the records about it, and the strong
//                  references in what the logs keep.
//   "Unmade"       an entity whose making is undone.
//   "Orphan"       an entity whose last strong reference has gone and whose deletion is still to
//                  come.
//   "Quiet"        neither a transaction nor a replay is open.
//
// Invariants.  The test that guards each stands in brackets.
//
//   (H1) Replaying a log and then its inverse leaves every member of every living entity as it was,
//        and the same entities owned under the same ids, whichever references callers hold
//        meanwhile.  [HistoryTests, UndoAndRedoRestoreEveryKindOfMember; RandomOperationsTests,
//        AgreesWithTheModelAfterEveryStep; HeldReferencesTests]
//   (H2) The object of an entity that a log names is valid until the log is dropped, whichever
//        references callers take and let go, and when.  [HeldReferencesTests; all tests under the
//        address sanitizer]
//   (H3) Within one log a member of an entity is recorded once, as it was when it first changed;
//        members of entities that came within that log aren't recorded at all.
//        [HistoryTests, AMemberIsRecordedOnceWithinATransaction]
//   (H4) The size of a log and the time of a replay follow the changes that it records, not the
//        document.  [HistoryTests, ALogFollowsTheSizeOfTheChange]
//   (H5) No replay begins while a transaction or a replay is open, and no transaction while a
//        replay is.  [HistoryTests, NothingBeginsWithinAReplay]
//   (H6) Within a replay each entity is told once before and once after all of its changes,
//        whatever brackets made them.  [HistoryTests, AReplayTellsEachEntityOnce]
//   (H7) An orphan is deleted before the operation returns that made it one, or at the end of the
//        replay if nothing refers to it by then; never from within another deletion.
//        [HistoryTests, ALongChainIsDeletedOnASmallStack]
//   (H8) The document is clean exactly if its state is the one that was marked last and nothing has
//        changed since that isn't a step.  [HistoryTests, TheCleanMarkIsFoundAgain]
//   (H9) Whichever allocation fails, the document is afterwards what it was or what it was to
//        become, and the history fits or is given up; or isUsable is false.  [OutOfMemoryTests]
//   (H10) Whatever a replay gives a strong reference to is alive after it, unless it is unmade;
//        what is unmade is refused by whatever lists or owns entities.  [HeldReferencesTests]
//   (H11) Letting go of a reference takes no step away.  [HeldReferencesTests,
//        LettingGoOutsideATransactionTakesNoRedoStepAway]
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
// In "quiet" nothing is recorded: a change made there can't be undone, and ends the history, since
// its logs would no longer fit.  It isn't refused, for a document that is being set up has no use
// for steps; a host that wants to hear of it asks onUnrecorded or takeUnrecorded.  The one
// exception is the death of an entity whose last reference a
// caller held beyond its transaction: the steps stay, and what its deletion hooks change is taken
// back before a step is undone or redone.  In "transaction" logs stand one in another; a nested one
// that commits is added to the one around it.  In "replay" hooks run with TransactReplay; what they
// change directly isn't recorded, since the replay restores it anyway.  What it restores by places
// of a list keeps within the list, whatever a hook made of that.
//
// Where it is: the steps and the states are ChangeHistory's; Platform/DataModel/Log has the
// Recorder, which writes logs, the Replay, which reads them, Lifetimes, which has births, deaths
// and returns, and Losses, which has what "quiet" costs.

#ifndef VN_PLATFORM_DATAMODEL_CHANGEHISTORY_H
#define VN_PLATFORM_DATAMODEL_CHANGEHISTORY_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Status.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/Limits.h"

namespace Vn {

class Asset;
class Entity;
class UniqueString;

namespace DataModel {
class ChangeLog;
class Lifetimes;
class Losses;
class Recorder;
class Replay;
} // namespace DataModel

// Changes that were made outside of transactions, so that they can't be undone, and the steps that
// went with them.
struct VN_DATAMODEL_API UnrecordedChanges {
    // How often an entity changed or came, or a root was set.
    std::size_t changes = 0;
    // How many steps could be undone, and how many redone, before they went.
    std::size_t undoSteps = 0;
    std::size_t redoSteps = 0;
    // The entity that changed or came first; 0 if it was the root list that changed.
    unsigned long long entity = 0;
    // What it answers to getInterfaceId; null if there is none, and of an entity that came, whose
    // class wasn't known yet.
    UniqueString const * interfaceId = nullptr;

    // Success if there is no change; else StatusFailed, with the class and the id as the subject
    // and the numbers in the cause.
    Status status() const;
};

// The changes of one document.  Invariants and states stand at the top of this file.
class VN_DATAMODEL_API ChangeHistory {
public:
    // For the document that owns it.
    explicit ChangeHistory(Asset & asset);
    ~ChangeHistory();
    ChangeHistory(ChangeHistory const &) = delete;
    ChangeHistory & operator=(ChangeHistory const &) = delete;

    // Takes back the last step, or does again the one taken back last.  A failure says why nothing
    // was done: there is no such step, or a transaction or a replay is open.  What a hook throws
    // goes on to the caller once the replay is complete.
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

    // How many steps, and how many bytes with the entities that are kept, the history may have; 0
    // is without limit.  The oldest steps go first, and the last is never given up.  Without being
    // set it is 0 and 1 GiB.
    void stepLimit(std::size_t steps);
    std::size_t stepLimit() const noexcept { return m_stepLimit; }
    void byteLimit(std::size_t bytes);
    std::size_t byteLimit() const noexcept { return m_byteLimit; }
    // The bytes at present.
    std::size_t bytes() const noexcept;

    // Whether the state of the document is the one that was marked last; a new document is clean.
    void markClean() noexcept;
    bool isClean() const noexcept;
    // Which state was marked last: that with so many undoSteps().  Empty if no undo or redo leads
    // to it.
    std::optional<std::size_t> cleanSteps() const noexcept;
    // Something changed that isn't a step and can't be undone, and leaves the history as it is: the
    // document isn't clean until it is marked.
    void markModified() noexcept { m_bModified = true; }

    // False once memory ran out in the middle of a replay, or before a transaction that had to be
    // taken back: the document is then neither the one before nor the one after, the history is
    // given up, and undo, redo and saving are refused.
    bool isUsable() const noexcept { return m_bUsable; }

    // Changes outside of transactions end the history, and nothing else tells of them: a forgotten
    // Transaction shows when the user can't undo.  These are for the host that wants to know.

    // Sets what is called of them, on the thread of the document; an empty function ends that.  It
    // is called for the first such change after it was set, and for each that takes steps away:
    // once for all that belongs to the outermost bracket, after that has closed, or once an entity
    // or a root is in its place, but within the operation that did it, so that a debugger shows the
    // caller.  It may change the document, set another function, or let go of the document.  What
    // it changes without a transaction is counted and not told.  What it throws goes no further.
    using UnrecordedFunction = std::function<void(UnrecordedChanges const &)>;
    void onUnrecorded(UnrecordedFunction function);
    // The sum since this was asked last, or since the document was made or loaded; for a test or a
    // host that asks after each command.
    UnrecordedChanges takeUnrecorded() noexcept;

    // The states, as at the top of this file.
    bool isInTransaction() const noexcept { return !m_open.empty(); }
    // Whether the innermost transaction that is open has recorded a change by now, so that it will
    // leave a step; false without a transaction.  For what is to be done only along with a change.
    bool hasOpenChanges() const noexcept;
    bool isReplaying() const noexcept { return m_bReplaying; }

    // The parts of the history, for the data model's own use.
    DataModel::Recorder & recorder() const noexcept { return *m_pRecorder; }
    DataModel::Lifetimes & lifetimes() const noexcept { return *m_pLifetimes; }

private:
    friend class DataModel::Lifetimes;
    friend class DataModel::Recorder;
    friend class Entity;
    friend class Segment;
    friend class Transaction;

    struct Step;
    class Replaying;
    using Steps = std::deque<std::unique_ptr<Step>>;

    // Transactions.  `commit` answers whether a step came of it.
    bool begin(std::wstring_view name);
    bool commit();
    void abort();
    void join(DataModel::ChangeLog & log, DataModel::ChangeLog & around);
    void tellCommitted(DataModel::ChangeLog & log);

    Status move(bool undoing);
    void replay(Step & step, bool undoing);
    std::uint64_t state() const noexcept;
    std::uint32_t nextLogNumber() noexcept;

    // Something changed that no log records: the steps no longer fit.  `entity` is null for a root;
    // one that is being made can't be asked.
    void changedUnrecorded(Entity const * entity, bool isMade = false) noexcept;
    // Tells the host, once all brackets are closed.
    void tellUnrecorded() noexcept {
        if (m_bUnrecorded) tellLosses();
    }
    void tellLosses() noexcept;
    // The log of what deaths outside of transactions bring with them: null if there is no step that
    // it could disturb, or no memory.  Before a step is undone or redone it is taken back, so that
    // the step fits; a step that is made meanwhile leaves it to the step before.
    DataModel::ChangeLog * lateLog() noexcept;
    void lateLogEnds() noexcept;
    void takeBackLate();
    void joinLate();
    void dropLate() noexcept;
    template <class Visit>
    void forEachLog(Visit && visit);

    void enforceLimits();
    void dropOldest() noexcept;
    void dropRedo() noexcept;
    // Memory ran out for the record of what can't be refused: no state before can be reached.
    void lose() noexcept;
    // Memory ran out in a replay of these logs, which may be null.
    void giveUp(DataModel::ChangeLog * log, DataModel::ChangeLog * inverse) noexcept;
    // Gives up all logs, `last` among them, which may be null.
    void dropAll(DataModel::ChangeLog * last) noexcept;

    Asset & m_asset;
    std::unique_ptr<DataModel::Recorder> const m_pRecorder;
    std::unique_ptr<DataModel::Lifetimes> const m_pLifetimes;
    std::unique_ptr<DataModel::Losses> const m_pLosses;
    std::unique_ptr<DataModel::ChangeLog> m_pSpare; // for the next step or inverse
    std::unique_ptr<DataModel::ChangeLog> m_pLate;  // since the present state was reached
    std::unique_ptr<char[]> m_pReserve;             // memory for an abort
    std::shared_ptr<std::wstring const> m_pName;    // of the step begun last
    std::vector<std::unique_ptr<Step>> m_open;
    Steps m_undo;
    Steps m_redo;
    bool m_bReplaying = false;
    bool m_bUsable = true;
    bool m_bModified = false;   // beside the steps
    bool m_bUnrecorded = false; // the host is to be told of losses
    bool m_bClearLater = false; // once the hooks of a commit have been told
    unsigned m_telling = 0;     // commits whose hooks are being told
    std::size_t m_stepLimit = 0;
    std::size_t m_byteLimit = Limits::c_historyBytes;
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

    // Ends it and keeps what was done, or takes it back.  Once ended, both do nothing.  `commit`
    // answers whether a step came of it, which is so if something changed and no transaction is
    // open around this one.  A commit that has no memory throws std::bad_alloc and leaves the
    // transaction open; an abort that has none throws it too, and the history isn't usable any
    // more.  If memory ran out for the record of what couldn't be refused, a commit keeps what was
    // done, and the history ends.
    bool commit();
    void abort();
    // Whether it has not been ended.
    bool isOpen() const noexcept { return m_pHistory != nullptr; }

private:
    ChangeHistory * m_pHistory;
};

} // namespace Vn

#endif
