// Births, deaths and returns of the entities of a document.
//
// An entity lives as long as something owns it.  What happens when its last strong reference goes
// depends on whether a log names it:
//
//   * If none does, nothing can bring it back, and its object is deleted.
//   * If one does, the object stays.  The references and lists that it gives up, and what else its
//     deletion hooks change within brackets, are put into its "tomb" as they were before.  A replay
//     that gives it an owner again, or that has a record about it, revives it: it gets back what is
//     in the tomb, and with that what it owned.
//
// A tomb names what it leads to, as a log does.  So an entity can be revived as long as anything
// leads to it that may be restored, and all that it owned with it; no order of deaths matters.
//
// (L1) The object of an entity with a name isn't deleted.
// (L2) An entity is dead or about to be if no strong reference leads to it, and it was ever owned.
// (L3) `names` of an entity is the number of records, strong words in logs, and strong words in
//      tombs that lead to it; and one more for an entity that died while brackets were open, until
//      they close.
// (L4) Only this class changes the phase of an entity.

#ifndef VN_PLATFORM_DATAMODEL_LOG_LIFETIMES_H
#define VN_PLATFORM_DATAMODEL_LOG_LIFETIMES_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Log/WordBuffer.h"

namespace Vn {
class Asset;
class ChangeHistory;
class Entity;
} // namespace Vn

namespace Vn::DataModel {

class ChangeLog;
class MemberLayout;
class Recorder;

class Lifetimes {
public:
    Lifetimes(Asset & asset, ChangeHistory & history, Recorder & recorder);
    ~Lifetimes();
    Lifetimes(Lifetimes const &) = delete;
    Lifetimes & operator=(Lifetimes const &) = delete;

    // A new entity, from its constructor.  In a transaction the open log gets a record of it before
    // anything else about it, so that an undo ends it; outside of one the steps before are dropped.
    void born(Entity & entity);
    // An entity whose object is destroyed without ever having had an owner.  Its records become
    // blank, so that no log leads to what isn't there.
    void unborn(Entity & entity) noexcept;
    // The last strong reference to an entity has gone.  It waits for its turn, so that deletions
    // don't nest however deep entities own each other; if it gets an owner before, it lives on.
    void orphaned(Entity & entity) noexcept;
    // A bracket opens on an entity whose deletion hooks are running.  Throws std::bad_alloc if its
    // members can't be kept.
    void changing(Entity & entity);
    // The outermost bracket on an entity has closed, which may be what its end waited for.
    void bracketClosed(Entity & entity) noexcept;
    // No bracket is open any more.
    void bracketsClosed() noexcept {
        if (!m_waiting.empty()) forgetWaiting();
    }

    // A name of an entity is given up.  The object goes if nothing else leads to it.
    void forget(Entity & entity) noexcept;

    // For a replay.  Ends a living entity whose making is undone, even if it is held; for good if
    // no redo can bring it back.  Its object stays as long as it is held or named.
    void unmake(Entity & entity, bool isForGood);
    // Brings a dead entity back, with all that it owned, and that owned, as they were when they
    // died.  Those that are unmade stay dead: only the redo of their making brings them back.
    void revive(Entity & entity);
    // Tells those that came back since the last call, but no more than once.
    void tellRevived();
    // Ends what has no owner at the end of a replay.  Those that came back are told later if
    // `isTold` says so, which must be before the logs of the replay are dropped.
    void settle(bool isTold) {
        if (!m_revived.empty() || !m_orphans.empty() || m_bUnlisted) settleAll(isTold);
    }
    // Tells each entity that has a record in the log of the transaction or replay that is over, and
    // each that came back by it.  What a hook of a replay throws is kept.
    void tellTransacted(ChangeLog & log, DataChange::ETransact transact);
    // The same for a replay of nothing but numbers: each entity once it has its own, and those that
    // came back at the end.
    void tellExchanged(Entity & entity);
    void tellReturned(DataChange::ETransact transact) {
        if (!m_returned.empty()) tellAllReturned(transact);
    }

    // Keeps the first exception that a hook of a replay throws, until the replay is complete.
    void hookThrew() noexcept;
    void rethrowOfHook() {
        if (m_hookFailure) std::rethrow_exception(std::exchange(m_hookFailure, nullptr));
    }
    void forgetHook() noexcept { m_hookFailure = nullptr; }

    // While logs are dropped nothing is deleted through hooks; that waits for the end.
    class Dropping {
    public:
        explicit Dropping(Lifetimes & lifetimes) noexcept : m_lifetimes(lifetimes) {
            ++m_lifetimes.m_dropping;
        }
        ~Dropping() {
            if (--m_lifetimes.m_dropping == 0) m_lifetimes.killLeftOrphans();
        }
        Dropping(Dropping const &) = delete;
        Dropping & operator=(Dropping const &) = delete;

    private:
        Lifetimes & m_lifetimes;
    };
    bool isDropping() const noexcept { return m_dropping > 0; }
    // Whether the deletions of orphans are running.
    bool isKilling() const noexcept { return m_bKilling; }

    // A replay broke off: what it revived may go.  Its orphans wait for their turn, but for those
    // that it has ended already, which may go with the logs.
    void breakOff() noexcept;
    // Gives up all tombs; for the end of the document, when no log is left.
    void clear() noexcept;

    // The bytes of the dead that are kept, and of their tombs.
    std::size_t bytes() const noexcept { return m_bytes; }

private:
    struct Tomb {
        WordBuffer words; // members as they were, with heads as in a Changed record
        std::size_t bytes = 0;
        std::unique_ptr<Tomb> next; // of those that wait to be given up
        Entity * entity = nullptr;
    };

    // A death whose hooks are running.
    struct Death {
        Death(Entity & dying, MemberLayout const & members) noexcept
            : entity(dying), layout(members) {}

        Entity & entity;
        MemberLayout const & layout;
        WordBuffer words;     // members as they were, with heads as in a Changed record
        bool isWhole = false; // all of them, not only references and lists
        bool mayReturn = false;
        Death * around = nullptr;
    };

    void forgetWaiting() noexcept;
    void settleAll(bool isTold);
    void tellAllReturned(DataChange::ETransact transact);
    // Tells one entity that the transaction or replay is over.
    void tellOver(Entity & entity, bool came, DataChange::ETransact transact);
    // Ends one entity: keeps what its hooks may take away, calls them, has it let go of what it
    // owns, and takes it out of the document.  Its object goes if nothing names it; else it has a
    // tomb if anything differs.
    void kill(Entity & entity, DataChange::ETransact transact, bool isForGood);
    // Ends all that wait without an owner, in the order in which they lost it.  Outside of a
    // transaction what their hooks change goes into the late log: steps stay as they are.
    void killOrphans(DataChange::ETransact transact);
    void endOrphans(DataChange::ETransact transact);
    void killLeftOrphans() noexcept;
    // From now on the phase alone tells which entities wait: some that are listed may be dead.
    void unlistOrphans() noexcept;
    void changing(Death & death);
    void keepMembers(Death & death, std::vector<std::uint32_t> const & leaves);
    // Moves the members that differ now from what they were into a tomb, if the entity may return.
    // False if there was no memory.
    bool entomb(Death & death);
    // Puts an entity back into the document, without what it owned.
    void reviveOne(Entity & entity);
    // Gives an entity back what is in its tomb, and revives what that leads to.
    void openTomb(Entity & entity);
    // Of a dead entity that nothing names.
    void finish(Entity & entity) noexcept;
    void end(Entity & entity) noexcept;
    void giveUp(std::unique_ptr<Tomb> tomb) noexcept;
    // Gives up what the words of a tomb own and name.
    void empty(Tomb & tomb) noexcept;
    // Has a dead entity kept until no bracket is open.
    void wait(Entity & entity) noexcept;
    void account(Entity const & entity, bool isKept) noexcept;
    void discharge(std::size_t bytes) noexcept;

    Asset & m_asset;
    ChangeHistory & m_history;
    Recorder & m_recorder;
    std::unordered_map<Entity const *, std::unique_ptr<Tomb>> m_tombs;
    std::unique_ptr<Tomb> m_pGivenUp; // tombs that wait to be given up, one after the other
    Death * m_pDeath = nullptr;       // the innermost
    std::vector<Entity *> m_orphans;
    std::vector<Entity *> m_waiting;          // with a name each
    std::vector<StrongRef<Entity>> m_revived; // by the replay that is running
    std::size_t m_toldRevived = 0;            // how many of them have been told
    std::vector<Entity *> m_returned;         // those of the replay that is over, named by its logs
    std::exception_ptr m_hookFailure;
    std::size_t m_bytes = 0;
    std::size_t m_kept = 0; // how many dead entities are kept
    unsigned m_dropping = 0;
    bool m_bKilling = false;
    bool m_bGivingUp = false;
    bool m_bUnlisted = false; // there are orphans that m_orphans had no room for
};

} // namespace Vn::DataModel

#endif
