#include "Platform/DataModel/Log/Recorder.h"

#include <new>
#include <utility>

#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/Log/LogEntries.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::DataModel {

namespace {

bool isSaved(Entity const & entity) noexcept { return !entity.segment()->isTransient(); }

// In its document and not on its way out of it.
bool isThere(Entity & entity) noexcept { return stateOf(entity).phase() < EntityState::Dying; }

// What a splice takes in a log beside its elements.
constexpr std::size_t c_spliceWords = 3 + c_recordWords;

} // namespace

// --- Brackets ----------------------------------------------------------------------------------

EntityChange * Recorder::innermost(Entity const & entity) const noexcept {
    EntityChange * i = m_pInnermost;
    while (i && i->m_pEntity != &entity) i = i->m_pEnclosing;
    return i;
}

EntityChange * Recorder::outermost(Entity const & entity) const noexcept {
    EntityChange const * const inner = innermost(entity);
    return inner ? inner->m_pOutermost : nullptr;
}

void Recorder::open(EntityChange & change) {
    Entity & entity = *change.m_pEntity;
    EntityState & state = stateOf(entity);
    if (state.phase() == EntityState::Dying && change.m_bUndoable)
        m_history.lifetimes().changing(entity);
    EntityChange const * const inner =
        state.test(EntityState::Changing) ? innermost(entity) : nullptr;
    change.m_pOutermost = inner ? inner->m_pOutermost : &change;
    // What can be undone is recorded, also within a bracket of what can't.
    bool const isRecorder = !inner || (change.m_bUndoable && !inner->m_pRecorder->m_bUndoable);
    change.m_pRecorder = isRecorder ? &change : inner->m_pRecorder;
    if (isRecorder) {
        change.m_snapshot = m_scratch.size();
        if (m_pLog && change.m_bUndoable && isThere(entity)) keepMembers(change);
        state.set(EntityState::Changing);
        ++m_brackets;
    }
    change.m_pOutermost->m_told = change.m_type;
    change.m_pOutermost->m_types |= change.m_type;
    change.m_pRecorder->m_types |= change.m_type;
    change.m_pEnclosing = m_pInnermost;
    m_pInnermost = &change;
}

void Recorder::keepMembers(EntityChange & change) {
    Entity & entity = *change.m_pEntity;
    Record const before = continued(entity, *m_pLog);
    change.m_log = m_pLog->number();
    if (before.isBorn) return;
    auto const & leaves = leavesOf(entity);
    try {
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            Leaf const & leaf = leaves[i];
            if (!leaf.isUndoable || leaf.isInHelper || isRecorded(before.leaves, i)) continue;
            if (m_pSplices && leaf.kind == EMemberKind::Vector &&
                splicesAnnounced(entity, static_cast<int>(i)))
                continue;
            keepEntry(entity, i, leaf, m_asset, m_scratch);
            note(change.m_leaves, i);
        }
        if (!makeRoom(*m_pLog, c_recordWords)) throw std::bad_alloc();
    } catch (std::bad_alloc const &) {
        releaseEntries(leaves, m_scratch, change.m_snapshot);
        throw;
    }
}

bool Recorder::makeRoom(ChangeLog & log, std::size_t words) noexcept {
    return log.words().reserve(words + m_scratch.size() + m_brackets * c_recordWords);
}

void Recorder::close(EntityChange & change) {
    m_pInnermost = change.m_pEnclosing;
    if (change.m_pRecorder != &change) return;
    Entity & entity = *change.m_pEntity;
    --m_brackets;
    if (change.m_pOutermost != &change) return record(change);
    stateOf(entity).clear(EntityState::Changing);
    record(change);
    Lifetimes & lifetimes = m_history.lifetimes();
    lifetimes.bracketClosed(entity);
    if (m_brackets > 0) return;
    lifetimes.bracketsClosed();
    m_history.tellUnrecorded(); // last: the document may be gone after it
}

// What differs since the bracket that records an entity opened.
void Recorder::record(EntityChange const & change) {
    Entity & entity = *change.m_pEntity;
    bool const isReplay = DataChange::test(change.m_transact, DataChange::TransactReplay);
    if (!change.m_bUndoable && !isReplay) return;
    bool const isAlive = isThere(entity);
    if (isAlive) EntityAccess::markDirty(m_asset, entity);
    if (isReplay) return;

    ChangeLog * log = m_pLog && m_pLog->number() == change.m_log ? m_pLog : nullptr;
    Record record = log ? continued(entity, *log) : Record();
    std::size_t const begin = log ? log->end() : 0;
    if (m_scratch.size() > change.m_snapshot) keepDifferences(change, log, record);
    if (!log && isAlive) m_history.changedUnrecorded(&entity);
    if (!log) return;
    if (log->end() > begin) {
        if (isSaved(entity)) log->persistent();
        record.kind = ERecord::Changed;
        record.types = static_cast<std::uint8_t>(change.m_types);
        append(*log, begin, record);
    } else if (stateOf(entity).isIn(log->number()))
        log->record(stateOf(entity).record()).types |= static_cast<std::uint8_t>(change.m_types);
}

// Of the members kept when the bracket opened, those that differ go into the log.
void Recorder::keepDifferences(EntityChange const & change, ChangeLog * log, Record & record) {
    Entity & entity = *change.m_pEntity;
    auto const & leaves = leavesOf(entity);
    std::uint64_t recorded = record.leaves;
    bool owning = false;
    bool mixed = false;
    keepEntries(leaves, m_scratch, change.m_snapshot,
                [&](std::size_t i, Leaf const & leaf, std::uint64_t const * value) {
                    bool const isLeftOut = i < c_maskedLeaves && !isRecorded(change.m_leaves, i);
                    if (isLeftOut || !log || isRecorded(recorded, i) ||
                        isStill(entity, leaf, value))
                        return false;
                    note(recorded, i);
                    owning = owning || leaf.isOwning;
                    mixed = mixed || !leaf.numberBytes || i >= c_maskedLeaves;
                    return true;
                });
    std::size_t const words = m_scratch.size() - change.m_snapshot;
    if (!words) return;
    if (!log->words().reserve(words + c_recordWords)) { // only if hooks left brackets open
        releaseEntries(leaves, m_scratch, change.m_snapshot);
        m_bLost = true;
        return;
    }
    m_scratch.truncate(change.m_snapshot);
    log->words().push(m_scratch.data() + change.m_snapshot, words);
    record.leaves = recorded;
    if (owning) log->owning();
    if (mixed) log->mixed();
}

void Recorder::leaveOut(Entity & entity, void const * member) noexcept {
    if (!stateOf(entity).test(EntityState::Changing)) return;
    int const leaf = entity.metaType()->layout().find(entity, member);
    if (leaf < 0 || leaf >= c_maskedLeaves) return;
    for (EntityChange * i = m_pInnermost; i; i = i->m_pEnclosing)
        if (i->m_pEntity == &entity) i->m_leaves &= ~(std::uint64_t{1} << leaf);
}

// --- Lists -------------------------------------------------------------------------------------

int Recorder::leafOf(Entity & entity, void const * member) {
    MemberLayout const & layout = entity.metaType()->layout();
    int const leaf = layout.find(entity, member);
    if (leaf < 0 || leaf >= c_maskedLeaves) return -1;
    Leaf const & found = layout.leaves()[static_cast<std::size_t>(leaf)];
    return found.kind == EMemberKind::Vector && found.isUndoable ? leaf : -1;
}

bool Recorder::splicesAnnounced(Entity const & entity, int leaf) const noexcept {
    for (MemberSplices const * i = m_pSplices; i; i = i->m_pEnclosing)
        if (&i->m_entity == &entity && i->m_leaf == leaf) return true;
    return false;
}

void Recorder::enter(MemberSplices & splices, void const * member) {
    if (m_pLog) {
        splices.m_leaf = leafOf(splices.m_entity, member);
        // For the first insertion, which is told when it can't be refused any more.
        if (!makeRoom(*m_pLog, c_spliceWords)) throw std::bad_alloc();
    }
    splices.m_pEnclosing = m_pSplices;
    m_pSplices = &splices;
}

void Recorder::leave(MemberSplices & splices) noexcept { m_pSplices = splices.m_pEnclosing; }

void Recorder::spliced(MemberSplices const & splices, bool inserted, std::size_t index,
                       std::size_t count) {
    ChangeLog * const log = m_pLog;
    Entity & entity = splices.m_entity;
    if (splices.m_leaf < 0 || !log || !count || !isThere(entity)) return;
    std::size_t const leafNumber = static_cast<std::size_t>(splices.m_leaf);
    unsigned types = 0;
    EntityState const & state = stateOf(entity);
    if (state.test(EntityState::Changing)) {
        EntityChange const & recorder = *innermost(entity)->m_pRecorder;
        if (!recorder.m_bUndoable || isRecorded(recorder.m_leaves, leafNumber)) return;
        types = recorder.m_types;
    }
    Record record = continued(entity, *log);
    if (record.isBorn || isRecorded(record.leaves, leafNumber)) return;
    if (state.isIn(log->number())) {
        Record & last = log->record(state.record());
        // What goes on where the record before ended becomes a part of that.
        std::uint64_t * const payload = log->payload(state.record());
        if (inserted && last.kind == ERecord::Inserted && payload[0] == leafNumber &&
            index >= payload[1] && index <= payload[1] + payload[2]) {
            payload[2] += count;
            last.types |= static_cast<std::uint8_t>(types);
            return;
        }
    }
    Leaf const & leaf = leavesOf(entity)[leafNumber];
    void const * const there = field(entity, leaf);
    std::size_t const words = inserted ? 0 : elementWords(leaf, there, index, count);
    if (!makeRoom(*log, words + c_spliceWords)) {
        if (!inserted) throw std::bad_alloc();
        if (!log->words().reserve(c_spliceWords)) { // they are there already
            m_bLost = true;
            return;
        }
    }
    if (isSaved(entity)) log->persistent();
    std::size_t const begin = log->end();
    std::uint64_t * const payload = log->words().append(3);
    payload[0] = leafNumber;
    payload[1] = index;
    payload[2] = count;
    if (!inserted) {
        keepElements(leaf, there, index, count, &m_asset, log->words());
        if (leaf.isOwning) log->owning();
    }
    record.kind = inserted ? ERecord::Inserted : ERecord::Erased;
    record.types = static_cast<std::uint8_t>(types);
    log->mixed();
    append(*log, begin, record);
    makeRoom(*log, c_spliceWords); // for the next; if there is none, that is lost
}

// --- Entities and roots ------------------------------------------------------------------------

void Recorder::recordBirth(ChangeLog & log, Entity & entity) {
    if (!makeRoom(log, c_recordWords)) throw std::bad_alloc();
    if (isSaved(entity)) log.persistent();
    Record record;
    record.entity = &entity;
    record.kind = ERecord::Born;
    record.isBorn = true;
    log.mixed();
    append(log, log.end(), record);
}

void Recorder::rootChanging(Segment & segment, std::string const & key, std::size_t place,
                            Entity * old) {
    ChangeLog * const log = m_history.isReplaying() ? m_pInverse : m_pLog;
    if (!log) return m_history.changedUnrecorded(nullptr);
    if (!makeRoom(*log, 3 + (key.size() + 7) / 8 + c_recordWords)) throw std::bad_alloc();
    recordRoot(*log, segment, key, place, old);
}

bool Recorder::takeLost() noexcept { return std::exchange(m_bLost, false); }

} // namespace Vn::DataModel
