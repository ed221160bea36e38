#include "Platform/DataModel/Log/LogEntries.h"

#include <cstring>
#include <new>

#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::DataModel {

namespace {

void name(void *, Entity & entity) { stateOf(entity).name(); }

} // namespace

void keepEntry(Entity & entity, std::size_t index, Leaf const & leaf, Asset const & asset,
               WordBuffer & words) {
    if (leaf.numberBytes) {
        std::uint64_t * const place = words.append(2);
        place[0] = entry(index, 1);
        place[1] = numberOf(leaf, field(entity, leaf));
        return;
    }
    std::size_t const head = words.size();
    words.push(0);
    try {
        keep(leaf, field(entity, leaf), &asset, words);
    } catch (...) {
        words.truncate(head);
        throw;
    }
    words[head] = entry(index, words.size() - head - 1);
}

void releaseEntries(std::vector<Leaf> const & leaves, WordBuffer & words,
                    std::size_t begin) noexcept {
    std::uint64_t const * const end = words.data() + words.size();
    for (std::uint64_t * i = words.data() + begin; i < end;) {
        Leaf const & leaf = leaves[entryLeaf(*i++)];
        release(leaf, i);
    }
    words.truncate(begin);
}

void visitEntries(std::vector<Leaf> const & leaves, std::uint64_t const * begin,
                  std::uint64_t const * end, VisitEntity visit, void * context) {
    for (; begin < end; begin += 1 + entryWords(*begin))
        visitStrong(leaves[entryLeaf(*begin)], begin + 1, visit, context);
}

Record continued(Entity & entity, ChangeLog & log) {
    EntityState const & state = stateOf(entity);
    Record record;
    record.entity = &entity;
    record.previous = state.record();
    record.previousLog = state.log();
    if (state.isIn(log.number())) {
        Record const & last = log.record(state.record());
        record.leaves = last.leaves;
        record.isBorn = last.isBorn;
    }
    return record;
}

void nameAll(ChangeLog & log, std::size_t end) { visitNames(log, end, name, nullptr); }

void visitNames(ChangeLog & log, std::size_t end, VisitEntity visit, void * context) {
    Record const & record = log.record(end);
    if (log.isOwning()) {
        std::uint64_t const * const words = log.payload(end);
        switch (record.kind) {
        case ERecord::Changed:
            visitEntries(leavesOf(*record.entity), words, words + record.words, visit, context);
            break;
        case ERecord::Erased:
            visitStrongElements(leavesOf(*record.entity)[static_cast<std::size_t>(words[0])],
                                static_cast<std::size_t>(words[2]), words + 3, visit, context);
            break;
        case ERecord::Root:
            if (record.leaves)
                visit(context,
                      *reinterpret_cast<Entity *>(static_cast<std::uintptr_t>(record.leaves)));
            break;
        default:
            break;
        }
    }
    if (record.entity) visit(context, *record.entity);
}

void drop(ChangeLog & log, Lifetimes & lifetimes) noexcept {
    if (log.empty()) return log.reset(0);
    auto const forget = [](void * context, Entity & entity) {
        static_cast<Lifetimes *>(context)->forget(entity);
    };
    Lifetimes::Dropping const dropping(lifetimes);
    EntitiesAhead ahead(log);
    for (std::size_t end = log.end(); end; end = log.before(end)) {
        ahead.step();
        Record const & record = log.record(end);
        // Of the class, and so there even if the entity goes with its last name.
        std::vector<Leaf> const * const leaves =
            log.isOwning() && record.entity ? &leavesOf(*record.entity) : nullptr;
        visitNames(log, end, forget, &lifetimes);
        if (!leaves) continue;
        std::uint64_t * words = log.payload(end);
        if (record.kind == ERecord::Changed) {
            for (std::uint64_t * const wordsEnd = words + record.words; words < wordsEnd;) {
                Leaf const & leaf = (*leaves)[entryLeaf(*words++)];
                release(leaf, words);
            }
        } else if (record.kind == ERecord::Erased) {
            Leaf const & leaf = (*leaves)[static_cast<std::size_t>(words[0])];
            auto const count = static_cast<std::size_t>(words[2]);
            words += 3;
            releaseElements(leaf, count, words);
        }
    }
    log.reset(0);
}

void recordRoot(ChangeLog & log, Segment & segment, std::string const & key, std::size_t place,
                Entity * old) {
    std::size_t const keyWords = (key.size() + 7) / 8;
    if (!log.words().reserve(3 + keyWords + c_recordWords)) throw std::bad_alloc();
    if (!segment.isTransient()) log.persistent();
    std::size_t const begin = log.end();
    std::uint64_t * const payload = log.words().append(3 + keyWords);
    payload[0] = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&segment));
    payload[1] = place;
    payload[2] = key.size();
    std::memcpy(payload + 3, key.data(), key.size());
    Record record;
    record.entity = nullptr; // the chains of entities don't run through roots
    record.kind = ERecord::Root;
    record.leaves = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(old));
    if (old) log.owning();
    log.mixed();
    nameAll(log, log.close(begin, record));
}

} // namespace Vn::DataModel
