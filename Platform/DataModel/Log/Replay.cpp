#include "Platform/DataModel/Log/Replay.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string>

#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/Log/LogEntries.h"
#include "Platform/DataModel/Log/Recorder.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::DataModel {

namespace {

// Appends the present values of the members that a Changed record mentions; leaves room for a
// record.
void keepChanged(Entity & entity, Asset const & asset, std::uint64_t const * payload,
                 std::uint64_t const * payloadEnd, ChangeLog & inverse) {
    auto const & leaves = leavesOf(entity);
    WordBuffer & words = inverse.words();
    std::size_t const begin = words.size();
    std::size_t whole = begin; // up to here each head has its value
    try {
        for (; payload < payloadEnd; payload += 1 + entryWords(*payload)) {
            std::size_t const i = entryLeaf(*payload);
            words.push(0);
            keep(leaves[i], field(entity, leaves[i]), &asset, words);
            words[whole] = entry(i, words.size() - whole - 1);
            whole = words.size();
            if (leaves[i].isOwning) inverse.owning();
        }
        if (!words.reserve(c_recordWords)) throw std::bad_alloc();
    } catch (std::bad_alloc const &) {
        words.truncate(whole);
        releaseEntries(leaves, words, begin);
        throw;
    }
}

// Where an Inserted or Erased record is replayed.  What a hook of a replay did to the list isn't
// recorded, so that places may be gone.
struct Splice {
    Splice(Entity & entity, Record const & record, std::uint64_t const * payload)
        : m_leaf(leavesOf(entity)[static_cast<std::size_t>(payload[0])]),
          m_pField(field(entity, m_leaf)) {
        std::size_t const size = m_leaf.functions->elementCount(m_pField);
        m_index = std::min(static_cast<std::size_t>(payload[1]), size);
        m_count = static_cast<std::size_t>(payload[2]);
        if (record.kind == ERecord::Inserted) m_count = std::min(m_count, size - m_index);
    }

    Leaf const & m_leaf;
    void * const m_pField;
    std::size_t m_index;
    std::size_t m_count;
};

// Makes the members that a record mentions what they were.
void restoreMembers(Entity & entity, Record const & record, std::uint64_t const * payload) {
    auto const & leaves = leavesOf(entity);
    if (record.kind == ERecord::Changed) {
        for (std::uint64_t const * const end = payload + record.words; payload < end;) {
            Leaf const & leaf = leaves[entryLeaf(*payload++)];
            restore(leaf, field(entity, leaf), payload);
        }
        return;
    }
    Splice const splice(entity, record, payload);
    payload += 3;
    if (record.kind == ERecord::Inserted)
        eraseElements(splice.m_leaf, splice.m_pField, splice.m_index, splice.m_count);
    else
        insertElements(splice.m_leaf, splice.m_pField, splice.m_index, splice.m_count, payload);
}

bool isOfMembers(ERecord kind) noexcept {
    return kind == ERecord::Changed || kind == ERecord::Inserted || kind == ERecord::Erased;
}

// Calls `visit` with each record about the entity of the record at `end` and before it in the log.
template <class Visit>
void forChain(ChangeLog & log, std::size_t end, Visit && visit) {
    for (;; end = log.record(end).previous) {
        visit(log.record(end), log.payload(end));
        if (log.record(end).previousLog != log.number()) return;
    }
}

// The kinds of all changes that such a chain records.
DataChange::EChangeType changesOf(ChangeLog & log, std::size_t end) {
    unsigned types = 0;
    forChain(log, end, [&](Record & record, std::uint64_t *) { types |= record.types; });
    return static_cast<DataChange::EChangeType>(types);
}

} // namespace

void Replay::restore(bool undoing) {
    // Where nothing that is restored leads to an entity, none comes back by it that must not: then
    // each is marked in its turn, which saves a walk over all that were made.
    bool const isMarkedFirst = !undoing || m_log.isOwning();
    if (isMarkedFirst) markUnmade();
    reviveTargets();
    m_lifetimes.tellRevived();
    restoreRecords(isMarkedFirst);
    m_lifetimes.settle(m_pInverse != nullptr);
}

void Replay::markUnmade() {
    EntitiesAhead ahead(m_log);
    for (std::size_t end = m_log.end(); end; end = m_log.before(end)) {
        ahead.step();
        Record const & record = m_log.record(end);
        if (record.kind == ERecord::Born) {
            unmade(*record.entity);
        } else if (record.kind == ERecord::Unborn) {
            stateOf(*record.entity).clear(EntityState::Unmade);
            recordPresence(*record.entity, ERecord::Born);
        }
    }
}

void Replay::unmade(Entity & entity) {
    stateOf(entity).set(EntityState::Unmade);
    recordPresence(entity, ERecord::Unborn);
}

void Replay::recordPresence(Entity & entity, ERecord kind) {
    if (!m_pInverse) return;
    if (!m_pInverse->words().reserve(c_recordWords)) throw std::bad_alloc();
    Record record;
    record.entity = &entity;
    record.kind = kind;
    record.isBorn = kind == ERecord::Born;
    append(*m_pInverse, m_pInverse->end(), record);
}

void Replay::revive(Entity & entity) {
    EntityState const & state = stateOf(entity);
    if (state.phase() == EntityState::Dead && !state.test(EntityState::Unmade))
        m_lifetimes.revive(entity);
}

void Replay::reviveTargets() {
    for (std::size_t end = m_log.end(); end; end = m_log.before(end)) {
        Record const & record = m_log.record(end);
        switch (record.kind) {
        case ERecord::Born:
        case ERecord::Blank:
            continue;
        case ERecord::Unborn: // without an owner among what is restored, it lives if a caller holds
                              // it
            if (record.entity->refCount()) revive(*record.entity);
            continue;
        default:
            visitNames(
                m_log, end,
                [](void * replay, Entity & entity) {
                    static_cast<Replay *>(replay)->revive(entity);
                },
                this);
        }
    }
}

void Replay::restoreRecords(bool areMarked) {
    EntitiesAhead ahead(m_log);
    for (std::size_t end = m_log.end(); end; end = m_log.before(end)) {
        ahead.step();
        Record & record = m_log.record(end);
        if (record.isReplayed) continue;
        switch (record.kind) {
        case ERecord::Born:
            record.isReplayed = true;
            if (!areMarked) unmade(*record.entity);
            if (record.entity->isAlive()) m_lifetimes.unmake(*record.entity, !m_pInverse);
            break;
        case ERecord::Unborn:
        case ERecord::Blank:
            record.isReplayed = true;
            break;
        case ERecord::Root:
            restoreRoot(end);
            break;
        default:
            restoreEntity(end);
        }
    }
}

void Replay::restoreEntity(std::size_t last) {
    Entity & entity = *m_log.record(last).entity;
    EntityChange change(&entity, DataChange::TransactReplay, changesOf(m_log, last),
                        DataChange::TimingPreAndPost, nullptr, true);
    for (std::size_t end = last;;) {
        Record & record = m_log.record(end);
        if (!record.isReplayed && isOfMembers(record.kind)) {
            record.isReplayed = true;
            // The inverse stands before anything changes: what follows may fail in the middle.
            if (m_pInverse) recordInverse(entity, record, m_log.payload(end));
            restoreMembers(entity, record, m_log.payload(end));
            if (!m_pInverse) stateOf(entity).place(record.previousLog, record.previous);
        }
        if (record.previousLog != m_log.number()) break;
        end = record.previous;
    }
}

void Replay::recordInverse(Entity & entity, Record const & record, std::uint64_t const * payload) {
    ChangeLog & log = *m_pInverse;
    Record inverse = continued(entity, log);
    inverse.types = record.types;
    std::size_t const begin = log.end();
    if (record.kind == ERecord::Changed) {
        inverse.kind = ERecord::Changed;
        keepChanged(entity, m_asset, payload, payload + record.words, log);
    } else {
        Splice const splice(entity, record, payload);
        bool const isErasing = record.kind == ERecord::Inserted;
        std::size_t const kept =
            isErasing ? splice.m_count : 0; // that are there, and are about to go
        std::size_t const words =
            elementWords(splice.m_leaf, splice.m_pField, splice.m_index, kept);
        if (!log.words().reserve(3 + words + c_recordWords)) throw std::bad_alloc();
        inverse.kind = isErasing ? ERecord::Erased : ERecord::Inserted;
        std::uint64_t const head[] = {payload[0], splice.m_index, splice.m_count};
        log.words().push(head, std::size(head));
        keepElements(splice.m_leaf, splice.m_pField, splice.m_index, kept, &m_asset, log.words());
        if (isErasing && splice.m_leaf.isOwning) log.owning();
    }
    append(log, begin, inverse);
}

void Replay::restoreRoot(std::size_t end) {
    Record & record = m_log.record(end);
    record.isReplayed = true;
    std::uint64_t const * const payload = m_log.payload(end);
    auto & segment = *reinterpret_cast<Segment *>(static_cast<std::uintptr_t>(payload[0]));
    std::string const key(reinterpret_cast<char const *>(payload + 3),
                          static_cast<std::size_t>(payload[2]));
    auto * const old = reinterpret_cast<Entity *>(static_cast<std::uintptr_t>(record.leaves));
    std::size_t const place = EntityAccess::rootPlace(segment, key);
    Entity * const present = EntityAccess::rootUnder(segment, key);
    if (m_pInverse)
        recordRoot(*m_pInverse, segment, key,
                   present ? place : static_cast<std::size_t>(payload[1]), present);
    EntityAccess::placeRoot(segment, StrongRef<Entity>(old), key,
                            static_cast<std::size_t>(payload[1]));
}

// Hooks may append records to the log meanwhile, and make it a mixed one.
void Replay::exchange(bool undoing) {
    if (m_log.isOne() && m_log.record(m_log.end()).kind != ERecord::Blank) {
        std::size_t const end = m_log.end();
        exchangeEntity(end);
        m_lifetimes.tellExchanged(*m_log.record(end).entity);
        return m_lifetimes.settle(true);
    }
    WordBuffer & scratch = m_recorder.scratch();
    std::size_t const after = m_log.end();
    std::size_t const first = scratch.size();
    if (!scratch.reserve(after / c_recordWords)) throw std::bad_alloc();
    for (std::size_t end = after; end; end = m_log.before(end)) {
        if (m_log.record(end).isReplayed || m_log.record(end).kind == ERecord::Blank) continue;
        forChain(m_log, end, [](Record & record, std::uint64_t *) { record.isReplayed = true; });
        scratch.push(end);
    }
    std::size_t const entities = scratch.size() - first;
    auto const place = [&](std::size_t i) {
        return static_cast<std::size_t>(scratch[first + (undoing ? i : entities - 1 - i)]);
    };
    constexpr std::size_t c_ahead = 4;
    for (std::size_t i = 0; i < entities; ++i) {
        if (i + c_ahead < entities) prefetchEntity(m_log, place(i + c_ahead));
        exchangeEntity(place(i));
        m_lifetimes.tellExchanged(*m_log.record(place(i)).entity);
    }
    scratch.truncate(first);
    for (std::size_t end = after; end; end = m_log.before(end))
        m_log.record(end).isReplayed = false;
    m_lifetimes.settle(true);
}

void Replay::exchangeEntity(std::size_t last) {
    Entity & entity = *m_log.record(last).entity;
    if (!entity.isAlive()) { // it was let go outside of a transaction
        revive(entity);
        m_lifetimes.tellRevived();
    }
    EntityChange change(&entity, DataChange::TransactReplay, changesOf(m_log, last),
                        DataChange::TimingPreAndPost, nullptr, true);
    auto const & leaves = leavesOf(entity);
    forChain(m_log, last, [&](Record & record, std::uint64_t * payload) {
        for (std::uint32_t i = 0; i < record.words; i += 2) {
            Leaf const & leaf = leaves[entryLeaf(payload[i])];
            DataModel::exchange(leaf, field(entity, leaf), payload[i + 1]);
        }
    });
    stateOf(entity).place(m_log.number(), static_cast<std::uint32_t>(last));
}

} // namespace Vn::DataModel
