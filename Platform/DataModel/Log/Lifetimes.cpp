#include "Platform/DataModel/Log/Lifetimes.h"

#include <algorithm>
#include <new>
#include <utility>

#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/Log/LogEntries.h"
#include "Platform/DataModel/Log/Recorder.h"
#include "Platform/DataModel/Log/Step.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::DataModel {

namespace {

void nameIn(void *, Entity & entity) { stateOf(entity).name(); }
void forgetIn(void * lifetimes, Entity & entity) {
    static_cast<Lifetimes *>(lifetimes)->forget(entity);
}

// A log is read from its end: the places of the records come first, where there is memory for them.
template <class Visit>
void forEachForwards(ChangeLog & log, Visit && visit) {
    WordBuffer places;
    bool const isRoom = places.reserve(log.end() / c_recordWords);
    for (std::size_t end = log.end(); end; end = log.before(end))
        if (isRoom)
            places.push(end);
        else
            visit(end);
    constexpr std::size_t c_ahead = 8;
    for (std::size_t i = places.size(); i--;) {
        if (i >= c_ahead)
            __builtin_prefetch(log.record(static_cast<std::size_t>(places[i - c_ahead])).entity);
        visit(static_cast<std::size_t>(places[i]));
    }
}

} // namespace

Lifetimes::Lifetimes(Asset & asset, ChangeHistory & history, Recorder & recorder)
    : m_asset(asset), m_history(history), m_recorder(recorder) {}

Lifetimes::~Lifetimes() = default;

// --- Births ------------------------------------------------------------------------------------

void Lifetimes::born(Entity & entity) {
    if (m_history.isReplaying()) return;
    ChangeLog * const log = m_recorder.log();
    if (log)
        m_recorder.recordBirth(*log, entity);
    else
        m_history.changedUnrecorded(&entity, true);
    EntityAccess::markDirty(m_asset, entity);
}

// Its records end here: they are about nothing any more, and no reference leads to it.
void Lifetimes::unborn(Entity & entity) noexcept {
    EntityAccess::leave(m_asset, entity);
    if (stateOf(entity).names() == 0) return;
    m_history.forEachLog([&](ChangeLog & log) {
        for (std::size_t end = log.end(); end; end = log.before(end))
            if (Record & record = log.record(end); record.entity == &entity) log.blank(end);
    });
}

// --- Deaths ------------------------------------------------------------------------------------

void Lifetimes::orphaned(Entity & entity) noexcept {
    EntityAccess::strongCount(entity, 0);
    EntityState & state = stateOf(entity);
    switch (state.phase()) {
    case EntityState::Alive:
        if (EntityAccess::isClosing(m_asset)) return; // the asset ends its entities itself
        break;
    case EntityState::Dead:
    case EntityState::Forgotten: // which a record may name again, if something owned it all the
                                 // same
        if (state.names() == 0 && !state.test(EntityState::Entombed)) end(entity);
        return;
    default:
        return;
    }
    state.orphan();
    try {
        m_orphans.push_back(&entity);
    } catch (std::bad_alloc const &) { // the phase tells
        m_bUnlisted = true;
    }
    if (!m_history.isReplaying() && !m_bKilling && !m_dropping)
        killOrphans(DataChange::TransactDirect);
}

void Lifetimes::killOrphans(DataChange::ETransact transact) {
    if (m_orphans.empty() && !m_bUnlisted) return;
    // Outside a transaction, what the hooks of a death change is recorded beside the steps.
    bool const isQuiet =
        !m_history.isReplaying() && !m_recorder.log() && !EntityAccess::isLoading(m_asset);
    if (!isQuiet) return endOrphans(transact);
    m_recorder.log(m_history.lateLog());
    endOrphans(transact);
    m_recorder.log(nullptr);
    m_history.lateLogEnds();
}

void Lifetimes::endOrphans(DataChange::ETransact transact) {
    auto const endOne = [&](Entity & entity) {
        EntityState & state = stateOf(entity);
        if (state.phase() != EntityState::Orphaned) return;
        state.adopt();
        if (entity.refCount()) return;
        try {
            kill(entity, transact, false);
        } catch (...) { // memory ran out, before anything happened to it or after all had
            if (state.isAlive()) state.orphan();
            throw;
        }
    };
    std::size_t ended = 0;
    auto const endListed = [&] { // by index: deletions make further orphans
        for (; ended < m_orphans.size(); ++ended) endOne(*m_orphans[ended]);
    };
    m_bKilling = true;
    try {
        endListed();
        while (std::exchange(m_bUnlisted, false))
            EntityAccess::table(m_asset).forEach([&](Entity & entity) {
                if (stateOf(entity).phase() != EntityState::Orphaned) return;
                endOne(entity);
                endListed(); // so that what is found in that phase isn't listed
            });
    } catch (...) { // memory ran out in a replay
        unlistOrphans();
        m_bKilling = false;
        throw;
    }
    m_orphans.clear();
    m_bKilling = false;
}

void Lifetimes::killLeftOrphans() noexcept {
    if (m_dropping || m_history.isReplaying() || m_bKilling) return;
    killOrphans(DataChange::TransactDirect);
}

void Lifetimes::kill(Entity & entity, DataChange::ETransact transact, bool isForGood) {
    EntityState & state = stateOf(entity);
    static MemberLayout const s_none(nullptr);
    MemberLayout const * known = nullptr;
    try {
        known = &entity.metaType()->layout();
    } catch (std::bad_alloc const &) {
        // Of a class whose first object is refused for want of memory: nothing of it was recorded.
        if (m_history.isReplaying()) throw;
        known = &s_none;
    }
    MemberLayout const & layout = *known;
    Death death(entity, layout);
    // Without a log that is open or names it, or a bracket whose record may, nothing leads back,
    // nor does anything after an abort.
    death.mayReturn =
        !isForGood && (state.names() > 0 || m_recorder.log() || m_recorder.scratch().size() > 0);
    if (death.mayReturn) {
        try {
            keepMembers(death, layout.references());
            if (state.test(EntityState::Changing)) changing(death);
        } catch (std::bad_alloc const &) {
            if (m_history.isReplaying()) throw;
            m_history.lose(); // a death can't be refused
            death.mayReturn = state.names() > 0;
        }
        // From here on nothing that the entity owns goes before its tomb is made.
        if (layout.hasStrong())
            visitEntries(layout.leaves(), death.words.data(),
                         death.words.data() + death.words.size(), nameIn, nullptr);
    }
    // What stands in the file and leaves no record makes the document differ from it.
    bool const isRecorded =
        m_history.isReplaying() ||
        (m_recorder.log() && m_recorder.log()->isPersistent() && m_history.isInTransaction());
    if (!isRecorded && state.test(EntityState::Stored)) m_history.markModified();

    state.die();
    // Hooks' references don't end it again.
    EntityAccess::strongCount(entity, entity.refCount() + 1);
    death.around = std::exchange(m_pDeath, &death);
    // A deletion can't be refused: what its hooks throw is dropped, but for a replay, which passes
    // it on.
    try {
        entity.segment()->entityEventSource()->tellPreDelete(entity, transact);
        EntityAccess::tellPreDelete(entity);
        EntityAccess::tellPreDeletion(entity, transact);
    } catch (...) {
        if (m_history.isReplaying()) hookThrew();
    }
    m_pDeath = death.around;
    layout.dropStrong(entity);
    EntityAccess::leave(m_asset, entity);
    EntityAccess::suspendPassive(entity);
    state.depart();
    // Members that open brackets keep may lead to it, and become a record that names it.
    if (m_recorder.scratch().size() > 0) wait(entity);
    bool const isGood = entomb(death);
    EntityAccess::strongCount(entity, entity.refCount() - 1);
    if (state.names() == 0)
        finish(entity);
    else
        account(entity, true);
    if (isGood) return;
    if (m_history.isReplaying()) throw std::bad_alloc();
    m_history.lose();
}

void Lifetimes::changing(Entity & entity) {
    for (Death * death = m_pDeath; death; death = death->around)
        if (&death->entity == &entity) return changing(*death);
}

void Lifetimes::changing(Death & death) {
    if (!death.mayReturn || death.isWhole) return;
    keepMembers(death, death.layout.plain());
    death.isWhole = true;
}

void Lifetimes::keepMembers(Death & death, std::vector<std::uint32_t> const & leaves) {
    auto const & all = death.layout.leaves();
    std::size_t const begin = death.words.size();
    try {
        for (std::uint32_t const i : leaves)
            keepEntry(death.entity, i, all[i], m_asset, death.words);
    } catch (std::bad_alloc const &) {
        releaseEntries(all, death.words, begin);
        throw;
    }
}

bool Lifetimes::entomb(Death & death) {
    if (death.words.size() == 0) return true;
    Entity & entity = death.entity;
    auto const & leaves = death.layout.leaves();
    bool const mayReturn = death.mayReturn && stateOf(entity).names() > 0;
    keepEntries(leaves, death.words, 0,
                [&](std::size_t, Leaf const & leaf, std::uint64_t const * value) {
                    if (mayReturn && !isStill(entity, leaf, value)) return true;
                    if (leaf.isStrong) visitStrong(leaf, value, forgetIn, this);
                    return false;
                });
    if (death.words.size() == 0) return true;
    try {
        auto made = std::make_unique<Tomb>();
        made->entity = &entity;
        Tomb & tomb = *m_tombs.try_emplace(&entity, std::move(made)).first->second;
        tomb.words.swap(death.words);
        tomb.words.trim();
        tomb.bytes = sizeof(Tomb) + tomb.words.heapBytes();
        m_bytes += tomb.bytes;
        stateOf(entity).set(EntityState::Entombed);
        return true;
    } catch (std::bad_alloc const &) {
        visitEntries(leaves, death.words.data(), death.words.data() + death.words.size(), forgetIn,
                     this);
        releaseEntries(leaves, death.words, 0);
        return false;
    }
}

void Lifetimes::unmake(Entity & entity, bool isForGood) {
    EntityState & state = stateOf(entity);
    if (state.phase() == EntityState::Orphaned) state.adopt();
    kill(entity, DataChange::TransactReplay, isForGood);
}

void Lifetimes::wait(Entity & entity) noexcept {
    try {
        m_waiting.push_back(&entity);
        stateOf(entity).name();
    } catch (std::bad_alloc const &) {
        m_history.lose(); // then nothing that was kept becomes a record
    }
}

void Lifetimes::forgetWaiting() noexcept {
    Dropping const dropping(*this);
    for (Entity * const entity : std::exchange(m_waiting, {})) forget(*entity);
}

void Lifetimes::bracketClosed(Entity & entity) noexcept {
    EntityState const & state = stateOf(entity);
    if (!state.isAlive() && state.names() == 0 && !state.test(EntityState::Entombed)) end(entity);
}

void Lifetimes::forget(Entity & entity) noexcept {
    EntityState & state = stateOf(entity);
    if (state.unname() || state.isAlive()) return;
    if (state.phase() == EntityState::Dead) account(entity, false);
    finish(entity);
}

void Lifetimes::finish(Entity & entity) noexcept {
    EntityState & state = stateOf(entity);
    if (state.test(EntityState::Entombed)) {
        auto const i = m_tombs.find(&entity);
        std::unique_ptr<Tomb> tomb = std::move(i->second);
        m_tombs.erase(i);
        return giveUp(std::move(tomb)); // which ends the entity
    }
    end(entity);
}

void Lifetimes::end(Entity & entity) noexcept {
    EntityState & state = stateOf(entity);
    if (entity.refCount()) {
        if (state.phase() == EntityState::Dead) state.forget();
        return EntityAccess::abandon(m_asset, entity);
    }
    if (state.test(EntityState::Changing)) return; // its brackets refer to it
    state.end();
    delete &entity;
}

// One after the other, however deep what they lead to is nested.
void Lifetimes::giveUp(std::unique_ptr<Tomb> tomb) noexcept {
    tomb->next = std::move(m_pGivenUp);
    m_pGivenUp = std::move(tomb);
    if (std::exchange(m_bGivingUp, true)) return;
    while (std::unique_ptr<Tomb> const next = std::move(m_pGivenUp)) {
        m_pGivenUp = std::move(next->next);
        empty(*next);
        stateOf(*next->entity).clear(EntityState::Entombed);
        end(*next->entity);
    }
    m_bGivingUp = false;
}

void Lifetimes::empty(Tomb & tomb) noexcept {
    // Of the class, and so there even if the tomb of an entity leads round to it.
    auto const & leaves = leavesOf(*tomb.entity);
    WordBuffer & words = tomb.words;
    discharge(tomb.bytes);
    visitEntries(leaves, words.data(), words.data() + words.size(), forgetIn, this);
    releaseEntries(leaves, words, 0);
}

void Lifetimes::account(Entity const & entity, bool isKept) noexcept {
    std::size_t bytes = 0;
    try {
        bytes = entity.metaType()->sizeInBytes(entity);
    } catch (...) { // it is left out
    }
    if (isKept) {
        ++m_kept;
        m_bytes += bytes;
        return;
    }
    discharge(bytes);
    // What callers changed in the dead meanwhile isn't carried on for good.
    if (--m_kept == 0 && m_tombs.empty()) m_bytes = 0;
}

void Lifetimes::discharge(std::size_t bytes) noexcept { m_bytes -= std::min(m_bytes, bytes); }

// --- Returns -----------------------------------------------------------------------------------

void Lifetimes::revive(Entity & entity) {
    std::size_t i = m_revived.size();
    reviveOne(entity);
    for (; i < m_revived.size(); ++i) openTomb(*m_revived[i]);
}

void Lifetimes::reviveOne(Entity & entity) {
    m_revived.emplace_back(&entity);
    EntityAccess::enter(m_asset, entity);
    account(entity, false);
    stateOf(entity).revive();
    EntityAccess::restorePassive(entity);
    stateOf(entity).set(EntityState::Returned);
    EntityAccess::markDirty(m_asset, entity);
}

void Lifetimes::openTomb(Entity & entity) {
    EntityState & state = stateOf(entity);
    if (!state.test(EntityState::Entombed)) return;
    auto const & leaves = leavesOf(entity);
    auto const i = m_tombs.find(&entity);
    WordBuffer & words = i->second->words;
    for (std::uint64_t const *place = words.data(), *const end = place + words.size();
         place < end;) {
        Leaf const & leaf = leaves[entryLeaf(*place++)];
        visitStrong(
            leaf, place,
            [](void * context, Entity & owned) {
                EntityState const & its = stateOf(owned);
                if (its.phase() == EntityState::Dead && !its.test(EntityState::Unmade))
                    static_cast<Lifetimes *>(context)->reviveOne(owned);
            },
            this);
        restore(leaf, field(entity, leaf), place);
    }
    visitEntries(
        leaves, words.data(), words.data() + words.size(),
        [](void *, Entity & owned) { stateOf(owned).unname(); }, nullptr);
    releaseEntries(leaves, words, 0);
    discharge(i->second->bytes);
    m_tombs.erase(i);
    state.clear(EntityState::Entombed);
}

void Lifetimes::tellRevived() {
    for (; m_toldRevived < m_revived.size(); ++m_toldRevived) {
        try {
            m_revived[m_toldRevived]->postCreation(DataChange::TransactReplay);
        } catch (...) {
            hookThrew();
        }
    }
}

void Lifetimes::settleAll(bool isTold) {
    if (isTold) m_returned.reserve(m_returned.size() + m_revived.size());
    for (StrongRef<Entity> const & revived : m_revived)
        if (isTold)
            m_returned.push_back(revived.get());
        else
            stateOf(*revived).clear(EntityState::Returned);
    m_revived.clear();
    m_toldRevived = 0;
    endOrphans(DataChange::TransactReplay);
}

void Lifetimes::tellTransacted(ChangeLog & log, DataChange::ETransact transact) {
    auto const tell = [&](std::size_t end) {
        Record const & record = log.record(end);
        if (record.kind == ERecord::Unborn) return; // it is dead
        if (!record.entity || !record.entity->isAlive()) return;
        EntityState const & state = stateOf(*record.entity);
        // The last record about it, so that it is told once.
        if (!state.isIn(log.number()) || state.record() != end) return;
        if (!state.test(EntityState::Returned)) tellOver(*record.entity, record.isBorn, transact);
    };
    if (log.isOne())
        tell(log.end());
    else
        forEachForwards(log, tell);
    tellReturned(transact);
}

void Lifetimes::tellExchanged(Entity & entity) {
    if (entity.isAlive() && !stateOf(entity).test(EntityState::Returned))
        tellOver(entity, false, DataChange::TransactReplay);
}

void Lifetimes::tellAllReturned(DataChange::ETransact transact) {
    for (std::size_t i = 0; i < m_returned.size(); ++i) {
        stateOf(*m_returned[i]).clear(EntityState::Returned);
        if (m_returned[i]->isAlive()) tellOver(*m_returned[i], true, transact);
    }
    m_returned.clear();
}

void Lifetimes::tellOver(Entity & entity, bool came, DataChange::ETransact transact) {
    try {
        EntityAccess::tellTransacted(entity, came, transact);
    } catch (...) {
        if (!m_history.isReplaying()) throw;
        hookThrew();
    }
}

void Lifetimes::unlistOrphans() noexcept {
    m_orphans.clear();
    m_bUnlisted = true;
}

void Lifetimes::breakOff() noexcept {
    unlistOrphans();
    for (StrongRef<Entity> const & revived : m_revived)
        stateOf(*revived).clear(EntityState::Returned);
    for (Entity * const returned : m_returned) stateOf(*returned).clear(EntityState::Returned);
    m_returned.clear();
    m_revived.clear();
    m_toldRevived = 0;
    forgetHook();
}

void Lifetimes::clear() noexcept {
    // What is left leads round in circles.
    while (!m_tombs.empty()) {
        auto const i = m_tombs.begin();
        std::unique_ptr<Tomb> const tomb = std::move(i->second);
        m_tombs.erase(i);
        stateOf(*tomb->entity).clear(EntityState::Entombed);
        empty(*tomb);
    }
}

void Lifetimes::hookThrew() noexcept {
    if (!m_hookFailure) m_hookFailure = std::current_exception();
}

} // namespace Vn::DataModel
