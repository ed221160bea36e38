#include "Platform/DataModel/ChangeHistory.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeLogInternal.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

using DataModel::c_maskedLeaves;
using DataModel::c_recordWords;
using DataModel::ChangeLog;
using DataModel::ERecord;
using DataModel::Leaf;
using DataModel::MemberLayout;
using DataModel::Record;
using DataModel::WordBuffer;

// One step of the history, or a transaction that is open.
struct ChangeHistory::Step {
    Step(std::shared_ptr<std::wstring const> name, std::uint32_t log, ChangeLog * around)
        : m_pName(std::move(name)), m_log(log), m_pAround(around) {}

    std::shared_ptr<std::wstring const> const m_pName;
    ChangeLog m_log;
    std::uint64_t m_state = 0; // of the document once the step is done
    ChangeLog * m_pAround;     // the log that was open when the transaction began
};

namespace {

bool isRecorded(std::uint64_t leaves, std::size_t leaf) noexcept {
    return leaf < c_maskedLeaves && (leaves >> leaf & 1);
}

void note(std::uint64_t & leaves, std::size_t leaf) noexcept {
    if (leaf < c_maskedLeaves) leaves |= std::uint64_t{1} << leaf;
}

// The head of a value in a Changed record.
std::uint64_t entry(std::size_t leaf, std::size_t words) noexcept {
    return leaf | static_cast<std::uint64_t>(words) << 32;
}
std::size_t entryLeaf(std::uint64_t head) noexcept { return head & 0xFFFFFFFFU; }
std::size_t entryWords(std::uint64_t head) noexcept { return head >> 32; }

// Takes values with their heads back.
void releaseEntries(std::vector<Leaf> const & leaves, WordBuffer & words, std::size_t begin) noexcept {
    std::uint64_t const * const end = words.data() + words.size();
    for (std::uint64_t * i = words.data() + begin; i < end;) {
        Leaf const & leaf = leaves[entryLeaf(*i++)];
        DataModel::release(leaf, i);
    }
    words.truncate(begin);
}

// Appends the present values of the members that a Changed record mentions; leaves room for a record.
void keepChanged(Entity & entity, Asset const & asset, std::uint64_t const * payload,
                 std::uint64_t const * payloadEnd, ChangeLog & inverse) {
    auto const & leaves = entity.metaType()->layout().leaves();
    WordBuffer & words = inverse.words();
    std::size_t const begin = words.size();
    std::size_t whole = begin; // up to here each head has its value
    try {
        for (; payload < payloadEnd; payload += 1 + entryWords(*payload)) {
            std::size_t const i = entryLeaf(*payload);
            words.push(0);
            DataModel::keep(leaves[i], DataModel::field(entity, leaves[i]), &asset, words);
            words[whole] = entry(i, words.size() - whole - 1);
            whole = words.size();
            if (leaves[i].m_bOwning) inverse.owning();
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
        : m_leaf(entity.metaType()->layout().leaves()[static_cast<std::size_t>(payload[0])]),
          m_pField(DataModel::field(entity, m_leaf)) {
        std::size_t const size = m_leaf.m_pFunctions->elementCount(m_pField);
        m_index = std::min(static_cast<std::size_t>(payload[1]), size);
        m_count = static_cast<std::size_t>(payload[2]);
        if (record.m_kind == ERecord::Inserted) m_count = std::min(m_count, size - m_index);
    }

    Leaf const & m_leaf;
    void * const m_pField;
    std::size_t m_index;
    std::size_t m_count;
};

// Makes the members that a record mentions what they were.
void replayRecord(Entity & entity, Record const & record, std::uint64_t const * payload) {
    auto const & leaves = entity.metaType()->layout().leaves();
    if (record.m_kind == ERecord::Changed) {
        for (std::uint64_t const * const end = payload + record.m_words; payload < end;) {
            Leaf const & leaf = leaves[entryLeaf(*payload++)];
            DataModel::restore(leaf, DataModel::field(entity, leaf), payload);
        }
        return;
    }
    Splice const splice(entity, record, payload);
    payload += 3;
    if (record.m_kind == ERecord::Inserted)
        DataModel::eraseElements(splice.m_leaf, splice.m_pField, splice.m_index, splice.m_count);
    else
        DataModel::insertElements(splice.m_leaf, splice.m_pField, splice.m_index, splice.m_count,
                                  payload);
}

// Fetches the entity of a record into the cache, while something else is replayed.  A call that isn't
// inlined would be dropped, since it changes nothing.
[[gnu::always_inline]] inline void prefetchEntity(ChangeLog & log, std::size_t end) noexcept {
    if (!end) return;
    auto const entity = reinterpret_cast<std::uintptr_t>(log.record(end).m_pEntity);
    constexpr std::uintptr_t c_line = 64;
    for (std::uintptr_t i = 0; i < 3; ++i)
        __builtin_prefetch(reinterpret_cast<void const *>(entity + i * c_line));
}

// A spare log that has grown larger is given back.
constexpr std::size_t c_spareBytes = 65536;

bool isSaved(Entity const & entity) noexcept { return !entity.segment()->isTransient(); }

} // namespace

ChangeHistory::ChangeHistory(Asset & asset)
    : m_asset(asset), m_pScratch(std::make_unique<WordBuffer>()) {}

ChangeHistory::~ChangeHistory() = default;

// --- Steps -------------------------------------------------------------------------------------

Status ChangeHistory::move(bool undoing) {
    char const * const operation = undoing ? "undo" : "redo";
    if (!m_bUsable)
        return Status::failed(operation, {}, "memory ran out in an undo or redo before");
    if (m_bReplaying) return Status::invalidArgument(operation, {}, "an undo or redo is running");
    if (isInTransaction()) return Status::invalidArgument(operation, {}, "a transaction is open");
    if (undoing ? m_undo.empty() : m_redo.empty())
        return Status::notFound(operation, {}, undoing ? "there is nothing to undo"
                                                       : "there is nothing to redo");
    // Room for the inverse of a mixed log, which is used again and again.
    if (!m_pSpare) m_pSpare = std::make_unique<ChangeLog>(0);
    if (undoing) {
        m_redo.push_back(std::move(m_undo.back()));
        m_undo.pop_back();
    } else {
        m_undo.push_back(std::move(m_redo.back()));
        m_redo.pop_back();
    }
    // Steps are often taken one behind the other.
    if (undoing ? !m_undo.empty() : !m_redo.empty()) {
        ChangeLog & next = (undoing ? m_undo.back() : m_redo.back())->m_log;
        prefetchEntity(next, next.end());
    }
    Step * const step = undoing ? m_redo.back().get() : m_undo.back().get();
    m_bytes -= step->m_log.bytes();
    try {
        replay(step->m_log, undoing);
    } catch (...) {
        std::unique_ptr<Step> const half = std::move(undoing ? m_redo.back() : m_undo.back());
        if (undoing)
            m_redo.pop_back();
        else
            m_undo.pop_back();
        giveUp(half->m_log, m_pSpare.get());
        throw;
    }
    m_bytes += step->m_log.bytes();
    rethrowOfHook();
    return Status();
}

Status ChangeHistory::undo() { return move(true); }
Status ChangeHistory::redo() { return move(false); }

bool ChangeHistory::canUndo() const noexcept {
    return m_bUsable && !m_bReplaying && m_open.empty() && !m_undo.empty();
}
bool ChangeHistory::canRedo() const noexcept {
    return m_bUsable && !m_bReplaying && m_open.empty() && !m_redo.empty();
}

std::vector<std::wstring> ChangeHistory::undoNames() const {
    std::vector<std::wstring> names;
    for (auto i = m_undo.rbegin(); i != m_undo.rend(); ++i) names.push_back(*(*i)->m_pName);
    return names;
}

std::vector<std::wstring> ChangeHistory::redoNames() const {
    std::vector<std::wstring> names;
    for (auto i = m_redo.rbegin(); i != m_redo.rend(); ++i) names.push_back(*(*i)->m_pName);
    return names;
}

void ChangeHistory::clear() {
    if (m_bReplaying || isInTransaction() || (m_undo.empty() && m_redo.empty())) return;
    m_baseState = state();
    // What a log mentions is kept by that log or by a later one: the earliest go first.
    while (!m_undo.empty()) dropOldest();
    dropRedo();
}

void ChangeHistory::dropOldest() noexcept {
    auto const step = std::move(m_undo.front());
    m_undo.pop_front();
    m_bytes -= step->m_log.bytes();
    drop(step->m_log);
}

void ChangeHistory::dropRedo() noexcept {
    auto const steps = std::exchange(m_redo, {});
    // An undone step keeps what had come with it, which steps that are redone later mention: those go first.
    for (auto const & step : steps) {
        m_bytes -= step->m_log.bytes();
        drop(step->m_log);
    }
}

void ChangeHistory::stepLimit(std::size_t steps) {
    m_stepLimit = steps;
    enforceLimits();
}

void ChangeHistory::byteLimit(std::size_t bytes) {
    m_byteLimit = bytes;
    enforceLimits();
}

std::size_t ChangeHistory::bytes() const noexcept {
    std::size_t bytes = m_bytes;
    for (auto const & step : m_open) bytes += step->m_log.bytes();
    return bytes;
}

void ChangeHistory::enforceLimits() {
    while (m_undo.size() > 1
           && ((m_stepLimit && m_undo.size() > m_stepLimit)
               || (m_byteLimit && m_bytes > m_byteLimit))) {
        m_baseState = m_undo.front()->m_state;
        dropOldest();
    }
}

std::uint64_t ChangeHistory::state() const noexcept {
    return m_undo.empty() ? m_baseState : m_undo.back()->m_state;
}

void ChangeHistory::markClean() noexcept {
    m_cleanState = state();
    m_bModified = false;
}

bool ChangeHistory::isClean() const noexcept {
    if (m_bModified) return false;
    for (auto const & step : m_open)
        if (step->m_log.isPersistent()) return false;
    return state() == m_cleanState;
}

std::uint32_t ChangeHistory::nextLogNumber() noexcept {
    if (++m_lastLog == 0) { // once in four thousand million: no entity may take an old log for a new one
        m_asset.m_pTable->forEach([](Entity & entity) { entity.m_logNumber = 0; });
        m_lastLog = 1;
    }
    return m_lastLog;
}

void ChangeHistory::changedUnrecorded() noexcept {
    if (m_bReplaying || m_bDropping || m_asset.m_bLoading || m_asset.m_bClosing) return;
    if (isInTransaction()) return;
    if (!m_undo.empty() || !m_redo.empty()) clear();
    m_baseState = ++m_lastState;
}

// --- Transactions ------------------------------------------------------------------------------

bool ChangeHistory::begin(std::wstring_view name) {
    if (m_bReplaying) return false;
    // Steps of the same name share it.
    if (!m_pName || *m_pName != name) m_pName = std::make_shared<std::wstring const>(name);
    m_open.push_back(std::make_unique<Step>(m_pName, nextLogNumber(), m_pLog));
    m_pLog = &m_open.back()->m_log;
    return true;
}

void ChangeHistory::commit() {
    Step & step = *m_open.back();
    ChangeLog & log = step.m_log;
    // Room comes first: without it the transaction stays open.
    if (step.m_pAround && !step.m_pAround->words().reserve(log.words().size()))
        throw std::bad_alloc();
    bool const isLost = !step.m_pAround && std::exchange(m_bLost, false);
    std::uint64_t const before = state();
    std::unique_ptr<Step> closed;
    if (step.m_pAround || isLost || log.empty())
        closed = std::move(m_open.back());
    else
        m_undo.push_back(std::move(m_open.back()));
    m_open.pop_back();
    m_pLog = step.m_pAround;
    if (isLost) return dropAll(&log); // what was recorded isn't all: nothing before can be reached
    if (log.empty()) return;
    if (m_pLog) {
        // Becomes a part of the log around it, whose number and places its records take.
        std::size_t const base = m_pLog->end();
        for (std::size_t end = log.end(); end; end = log.before(end)) {
            Record & record = log.record(end);
            if (record.m_previousLog == log.number()) {
                record.m_previousLog = m_pLog->number();
                record.m_previous += static_cast<std::uint32_t>(base);
            }
            if (record.m_pEntity && record.m_pEntity->m_logNumber == log.number()) {
                record.m_pEntity->m_logNumber = m_pLog->number();
                record.m_pEntity->m_logRecord += static_cast<std::uint32_t>(base);
            }
        }
        m_pLog->words().push(log.words().data(), log.words().size());
        m_pLog->addKeptBytes(log.keptBytes());
        if (log.isPersistent()) m_pLog->persistent();
        if (log.isOwning()) m_pLog->owning();
        if (log.isMixed() || base > 0) m_pLog->mixed(); // both may have recorded the same members
        return;
    }
    log.words().trim();
    step.m_state = log.isPersistent() ? ++m_lastState : before;
    m_bytes += log.bytes();
    dropRedo();
    enforceLimits();
}

void ChangeHistory::abort() {
    std::unique_ptr<Step> step = std::move(m_open.back());
    m_open.pop_back();
    m_pLog = nullptr;
    try {
        if (std::exchange(m_bLost, false)) throw std::bad_alloc(); // what was recorded isn't all
        replayForAbort(step->m_log);
    } catch (...) {
        m_pLog = step->m_pAround;
        giveUp(step->m_log, nullptr);
        throw;
    }
    m_pLog = step->m_pAround;
    drop(step->m_log);
    // What the replay killed was still mentioned by the log.
    for (Entity * const entity : std::exchange(m_killed, {})) letGo(*entity);
    if (std::uncaught_exceptions())
        m_hookFailure = nullptr;
    else
        rethrowOfHook();
}

Transaction::Transaction(Asset & asset, std::wstring_view name)
    : m_pHistory(asset.history().begin(name) ? &asset.history() : nullptr) {}

Transaction::~Transaction() {
    if (!m_pHistory) return;
    try {
        abort();
    } catch (...) { // what a hook of the replay threw; everything is back in place all the same
    }
}

void Transaction::commit() {
    if (m_pHistory) m_pHistory->commit();
    m_pHistory = nullptr;
}

void Transaction::abort() {
    if (m_pHistory) std::exchange(m_pHistory, nullptr)->abort();
}

// --- Records ------------------------------------------------------------------------------------

Record ChangeHistory::continued(Entity & entity, ChangeLog & log) {
    Record record;
    record.m_pEntity = &entity;
    record.m_previous = entity.m_logRecord;
    record.m_previousLog = entity.m_logNumber;
    if (entity.m_logNumber == log.number()) {
        Record const & last = log.record(entity.m_logRecord);
        record.m_leaves = last.m_leaves;
        record.m_bBorn = last.m_bBorn;
    }
    return record;
}

void ChangeHistory::append(ChangeLog & log, std::size_t begin, Record const & record) {
    record.m_pEntity->m_logRecord = static_cast<std::uint32_t>(log.close(begin, record));
    record.m_pEntity->m_logNumber = log.number();
}

void ChangeHistory::hookThrew() noexcept {
    if (!m_hookFailure) m_hookFailure = std::current_exception();
}

void ChangeHistory::rethrowOfHook() {
    if (std::exception_ptr const failure = std::exchange(m_hookFailure, nullptr))
        std::rethrow_exception(failure);
}

// --- Brackets ----------------------------------------------------------------------------------

int ChangeHistory::leafOf(Entity & entity, void const * member) {
    MemberLayout const & layout = entity.metaType()->layout();
    int const leaf = layout.find(entity, member);
    if (leaf < 0 || leaf >= c_maskedLeaves) return -1;
    Leaf const & found = layout.leaves()[static_cast<std::size_t>(leaf)];
    return found.m_kind == EMemberKind::Vector && found.m_bUndoable ? leaf : -1;
}

bool ChangeHistory::splicesAnnounced(Entity const & entity, int leaf) const noexcept {
    for (MemberSplices const * i = m_pSplices; i; i = i->m_pEnclosing)
        if (&i->m_entity == &entity && i->m_leaf == leaf) return true;
    return false;
}

EntityChange * ChangeHistory::outermostBracket(Entity const & entity) const noexcept {
    EntityChange * found = nullptr;
    for (EntityChange * i = m_pInnermost; i; i = i->m_pEnclosing)
        if (i->m_pEntity == &entity) found = i;
    return found;
}

void ChangeHistory::openBracket(EntityChange & change) {
    Entity & entity = *change.m_pEntity;
    if (entity.m_flags & Entity::FlagChanging) {
        change.m_pOutermost = outermostBracket(entity);
        change.m_pOutermost->m_told = change.m_type;
    } else {
        change.m_pOutermost = &change;
        change.m_snapshot = m_pScratch->size();
        if (m_pLog && change.m_bUndoable
            && !(entity.m_flags & (Entity::FlagDead | Entity::FlagDying)))
            keepMembers(change);
        entity.m_flags |= Entity::FlagChanging;
    }
    change.m_pOutermost->m_types |= change.m_type;
    change.m_pEnclosing = m_pInnermost;
    m_pInnermost = &change;
}

// The members as they are go to the scratch, each with its number as the head.
void ChangeHistory::keepMembers(EntityChange & change) {
    Entity & entity = *change.m_pEntity;
    Record const before = continued(entity, *m_pLog);
    change.m_log = m_pLog->number();
    if (before.m_bBorn) return;
    auto const & leaves = entity.metaType()->layout().leaves();
    std::size_t whole = m_pScratch->size(); // up to here each head has its value
    try {
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            Leaf const & leaf = leaves[i];
            if (!leaf.m_bUndoable || leaf.m_bInHelper || isRecorded(before.m_leaves, i)) continue;
            if (m_pSplices && leaf.m_kind == EMemberKind::Vector
                && splicesAnnounced(entity, static_cast<int>(i)))
                continue;
            m_pScratch->push(i);
            DataModel::keep(leaf, DataModel::field(entity, leaf), &m_asset, *m_pScratch);
            note(change.m_leaves, i);
            whole = m_pScratch->size();
        }
    } catch (std::bad_alloc const &) {
        m_pScratch->truncate(whole);
        releaseEntries(leaves, *m_pScratch, change.m_snapshot);
        throw;
    }
}

void ChangeHistory::closeBracket(EntityChange & change) {
    m_pInnermost = change.m_pEnclosing;
    if (change.m_pOutermost != &change) return;
    Entity & entity = *change.m_pEntity;
    entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagChanging);
    record(change);
    if (entity.m_flags & Entity::FlagDoomed) {
        entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagDoomed);
        letGo(entity);
    }
}

// What differs since the outermost bracket of an entity opened.
void ChangeHistory::record(EntityChange const & change) {
    Entity & entity = *change.m_pEntity;
    bool const isReplay = DataChange::test(change.m_transact, DataChange::TransactReplay);
    if (!change.m_bUndoable && !isReplay) return;
    bool const alive = !(entity.m_flags & (Entity::FlagDead | Entity::FlagDying));
    if (alive) m_asset.markDirty(entity);
    if (isReplay) return;

    ChangeLog * log = m_pLog && m_pLog->number() == change.m_log ? m_pLog : nullptr;
    Record record = log ? continued(entity, *log) : Record();
    std::size_t const begin = log ? log->end() : 0;
    if (m_pScratch->size() > change.m_snapshot) keepDifferences(change, log, record);
    if (!log && alive) changedUnrecorded();
    if (!log) return;
    if (log->end() > begin) {
        if (isSaved(entity)) log->persistent();
        record.m_kind = ERecord::Changed;
        record.m_types = static_cast<std::uint8_t>(change.m_types);
        append(*log, begin, record);
    } else if (entity.m_logNumber == log->number())
        log->record(entity.m_logRecord).m_types |= static_cast<std::uint8_t>(change.m_types);
}

// Of the members kept when the bracket opened, those that differ go into the log.
void ChangeHistory::keepDifferences(EntityChange const & change, ChangeLog * log, Record & record) {
    Entity & entity = *change.m_pEntity;
    auto const & leaves = entity.metaType()->layout().leaves();
    std::uint64_t * const begin = m_pScratch->data() + change.m_snapshot;
    std::uint64_t const * const end = m_pScratch->data() + m_pScratch->size();
    std::uint64_t const * place = begin;
    std::uint64_t * kept = begin; // the differences move together at the beginning
    std::uint64_t recorded = record.m_leaves;
    bool owning = false;
    bool mixed = false;
    while (place < end) {
        std::size_t const i = static_cast<std::size_t>(*place++);
        Leaf const & leaf = leaves[i];
        std::uint64_t const * const value = place;
        bool const same = DataModel::isKept(leaf, DataModel::field(entity, leaf), place);
        if (same || !log || isRecorded(recorded, i)) {
            if (leaf.m_bOwning) {
                auto * words = const_cast<std::uint64_t *>(value);
                DataModel::release(leaf, words);
            }
            continue;
        }
        auto const words = static_cast<std::size_t>(place - value);
        *kept++ = entry(i, words);
        std::memmove(kept, value, words * sizeof(*kept));
        kept += words;
        note(recorded, i);
        owning = owning || leaf.m_bOwning;
        mixed = mixed || !leaf.m_numberBytes || i >= c_maskedLeaves;
    }
    auto const words = static_cast<std::size_t>(kept - begin);
    m_pScratch->truncate(change.m_snapshot + words);
    if (!words) return;
    if (!log->words().reserve(words + c_recordWords)) { // no memory: the step can't be undone
        releaseEntries(leaves, *m_pScratch, change.m_snapshot);
        m_bLost = true;
        return;
    }
    m_pScratch->truncate(change.m_snapshot);
    log->words().push(begin, words);
    record.m_leaves = recorded;
    if (owning) log->owning();
    if (mixed) log->mixed();
}

void ChangeHistory::spliced(MemberSplices const & splices, bool inserted, std::size_t index,
                            std::size_t count) {
    ChangeLog * const log = m_pLog;
    Entity & entity = splices.m_entity;
    if (!log || !count || (entity.m_flags & (Entity::FlagDead | Entity::FlagDying))) return;
    std::size_t const leafNumber = static_cast<std::size_t>(splices.m_leaf);
    unsigned types = 0;
    if (entity.m_flags & Entity::FlagChanging) {
        EntityChange const & outermost = *outermostBracket(entity);
        if (!outermost.m_bUndoable || isRecorded(outermost.m_leaves, leafNumber)) return;
        types = outermost.m_types;
    }
    Record record = continued(entity, *log);
    if (record.m_bBorn || isRecorded(record.m_leaves, leafNumber)) return;
    if (entity.m_logNumber == log->number()) {
        Record & last = log->record(entity.m_logRecord);
        // What goes on where the record before ended becomes a part of that.
        std::uint64_t * const payload = log->payload(entity.m_logRecord);
        if (inserted && last.m_kind == ERecord::Inserted && payload[0] == leafNumber
            && index >= payload[1] && index <= payload[1] + payload[2]) {
            payload[2] += count;
            last.m_types |= static_cast<std::uint8_t>(types);
            return;
        }
    }
    Leaf const & leaf = entity.metaType()->layout().leaves()[leafNumber];
    void const * const field = DataModel::field(entity, leaf);
    std::size_t const words = inserted ? 0 : DataModel::elementWords(leaf, field, index, count);
    if (!log->words().reserve(3 + words + c_recordWords)) {
        if (!inserted) throw std::bad_alloc();
        m_bLost = true; // they are there already
        return;
    }
    if (isSaved(entity)) log->persistent();
    std::size_t const begin = log->end();
    std::uint64_t * const payload = log->words().append(3);
    payload[0] = leafNumber;
    payload[1] = index;
    payload[2] = count;
    if (!inserted) {
        DataModel::keepElements(leaf, field, index, count, &m_asset, log->words());
        if (leaf.m_bOwning) log->owning();
    }
    record.m_kind = inserted ? ERecord::Inserted : ERecord::Erased;
    record.m_types = static_cast<std::uint8_t>(types);
    append(*log, begin, record);
    log->mixed();
}

void ChangeHistory::rootChanging(Segment & segment, std::string const & key, std::size_t place,
                                 Entity * old) {
    ChangeLog * const log = m_bReplaying ? m_pInverse : m_pLog;
    if (!log) return changedUnrecorded();
    std::size_t const keyWords = (key.size() + 7) / 8;
    if (!log->words().reserve(3 + keyWords + c_recordWords)) throw std::bad_alloc();
    if (!segment.isTransient()) log->persistent();
    std::size_t const begin = log->end();
    std::uint64_t * const payload = log->words().append(3 + keyWords);
    payload[0] = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&segment));
    payload[1] = place;
    payload[2] = key.size();
    std::memcpy(payload + 3, key.data(), key.size());
    Record record;
    record.m_pEntity = nullptr; // the chains of entities don't run through roots
    record.m_kind = ERecord::Root;
    record.m_leaves = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(old));
    log->close(begin, record);
    log->mixed();
}

// --- Birth and death ---------------------------------------------------------------------------

void ChangeHistory::born(Entity & entity) {
    if (m_bReplaying) return;
    ChangeLog * const log = m_pLog;
    if (!log) {
        changedUnrecorded();
        m_asset.markDirty(entity);
        return;
    }
    if (isSaved(entity)) log->persistent();
    Record record;
    record.m_pEntity = &entity;
    record.m_kind = ERecord::Born;
    record.m_bBorn = true;
    append(*log, log->end(), record);
    log->owning();
    log->mixed();
    m_asset.markDirty(entity);
}

void ChangeHistory::unborn(Entity & entity) noexcept {
    m_asset.leave(entity);
    if (m_pLog && entity.m_logNumber == m_pLog->number()) {
        // Its records end here: they mention nobody, and nobody mentions them.
        for (std::size_t end = entity.m_logRecord;;) {
            Record & record = m_pLog->record(end);
            record.m_bReplayed = true;
            record.m_pEntity = nullptr;
            if (record.m_previousLog != m_pLog->number()) break;
            end = record.m_previous;
        }
    }
}

void ChangeHistory::orphaned(Entity & entity) noexcept {
    entity.strongCount(0);
    if (m_asset.m_bClosing) return; // the asset ends its entities itself
    if (entity.m_flags & Entity::FlagDead) {
        if (!(entity.m_flags & (Entity::FlagKept | Entity::FlagDying))) deleteDead(entity);
        return;
    }
    if (entity.m_flags & (Entity::FlagQueued | Entity::FlagDying)) return;
    entity.m_flags |= Entity::FlagQueued;
    try {
        m_orphans.push_back(&entity);
    } catch (std::bad_alloc const &) { // the flag tells
        m_bUnlisted = true;
    }
    if (!m_bReplaying && !m_bKilling && !m_bDropping) killOrphans(DataChange::TransactDirect);
}

void ChangeHistory::killOrphans(DataChange::ETransact transact) {
    if (m_orphans.empty() && !m_bUnlisted) return;
    // Outside a transaction what dies, and what its hooks change, belongs to the last step.
    ChangeLog * continued = nullptr;
    std::size_t before = 0;
    if (!m_bReplaying && !m_pLog && !m_asset.m_bLoading) {
        dropRedo();
        if (!m_undo.empty()) {
            continued = m_pLog = &m_undo.back()->m_log;
            before = continued->bytes();
        }
    }
    auto const end = [&](Entity & entity) {
        entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagQueued);
        if (entity.refCount() || (entity.m_flags & Entity::FlagDead)) return;
        try {
            kill(entity, transact);
        } catch (...) {
            entity.m_flags |= Entity::FlagQueued;
            throw;
        }
    };
    std::size_t ended = 0;
    auto const endListed = [&] { // by index: deletions make further orphans
        for (; ended < m_orphans.size(); ++ended) end(*m_orphans[ended]);
    };
    m_bKilling = true;
    try {
        endListed();
        while (std::exchange(m_bUnlisted, false))
            m_asset.m_pTable->forEach([&](Entity & entity) {
                if (!(entity.m_flags & Entity::FlagQueued)) return;
                end(entity);
                endListed(); // so that whoever is found with the flag isn't listed
            });
    } catch (...) { // memory ran out in a replay
        m_orphans.erase(m_orphans.begin(), m_orphans.begin() + static_cast<std::ptrdiff_t>(ended));
        m_bUnlisted = true;
        m_bKilling = false;
        throw;
    }
    m_orphans.clear();
    m_bKilling = false;
    if (!continued || !m_pLog) return;
    m_pLog = nullptr;
    m_bytes += continued->bytes() - before;
    if (continued->isPersistent()) m_undo.back()->m_state = ++m_lastState;
}

bool ChangeHistory::recordDeath(Entity & entity) {
    ChangeLog * const log = m_bReplaying ? m_pInverse : m_pLog;
    if (!log) {
        if (m_bReplaying)
            m_killed.push_back(&entity);
        else if (isSaved(entity))
            changedUnrecorded();
        return m_bReplaying;
    }
    auto const & leaves = entity.metaType()->layout().leaves();
    std::size_t const begin = log->end();
    std::size_t kept = 0;
    try {
        for (; kept < leaves.size(); ++kept)
            DataModel::keep(leaves[kept], DataModel::field(entity, leaves[kept]), &m_asset,
                            log->words());
        if (!log->words().reserve(c_recordWords)) throw std::bad_alloc();
    } catch (std::bad_alloc const &) {
        std::uint64_t * words = log->words().data() + begin;
        for (std::size_t i = 0; i < kept; ++i) DataModel::release(leaves[i], words);
        log->words().truncate(begin);
        if (m_bReplaying) throw;
        lose();
        return false;
    }
    Record record = continued(entity, *log);
    record.m_kind = ERecord::Died;
    append(*log, begin, record);
    log->mixed();
    log->addKeptBytes(entity.metaType()->sizeInBytes(entity));
    log->owning();
    if (isSaved(entity)) log->persistent();
    return true;
}

void ChangeHistory::kill(Entity & entity, DataChange::ETransact transact) {
    MemberLayout const & layout = entity.metaType()->layout();
    // The members as they are now, before the hooks give them up.
    bool const kept = recordDeath(entity);
    entity.m_flags |= Entity::FlagDying;
    entity.strongCount(entity.refCount() + 1); // so that references made by hooks don't end it again

    // A deletion can't be refused: what its hooks throw is dropped, but for a replay, which passes it on.
    try {
        entity.segment()->entityEventSource()->tellPreDelete(entity, transact);
        entity.onPreDeletion(transact);
    } catch (...) {
        if (m_bReplaying) hookThrew();
    }
    layout.dropStrong(entity);

    m_asset.leave(entity);
    entity.suspendPassive();
    entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagDying);
    entity.m_flags |= Entity::FlagDead;
    if (kept) entity.m_flags |= Entity::FlagKept;
    entity.strongCount(entity.refCount() - 1);
    if (!kept) letGo(entity);
}

void ChangeHistory::letGo(Entity & entity) noexcept {
    entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagKept);
    if (entity.refCount() == 0)
        deleteDead(entity);
    else
        m_asset.abandon(entity);
}

void ChangeHistory::deleteDead(Entity & entity) noexcept {
    if (entity.m_flags & Entity::FlagChanging) // its brackets refer to it
        entity.m_flags |= Entity::FlagDoomed;
    else
        delete &entity;
}

void ChangeHistory::revive(Entity & entity, std::uint64_t const * tomb) {
    entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagDead | Entity::FlagKept);
    entity.restorePassive();
    for (Leaf const & leaf : entity.metaType()->layout().leaves())
        if (!leaf.m_bInHelper) DataModel::restore(leaf, DataModel::field(entity, leaf), tomb);
    m_asset.markDirty(entity);
    if (!m_pInverse) return;
    Record record;
    record.m_pEntity = &entity;
    record.m_kind = ERecord::Born;
    record.m_bBorn = false; // members that are restored now are recorded: they changed before it died
    if (!m_pInverse->words().reserve(c_recordWords)) throw std::bad_alloc();
    append(*m_pInverse, m_pInverse->end(), record);
    m_pInverse->owning();
}

// --- Replay ------------------------------------------------------------------------------------

void ChangeHistory::replay(ChangeLog & log, bool undoing) {
    if (!log.isMixed()) return duringReplay(&log, [&] { exchangeAll(log, undoing); });
    // The inverse is written to a log that is used again and again, and then changes places.
    if (!m_pSpare) m_pSpare = std::make_unique<ChangeLog>(0);
    m_pSpare->reset(nextLogNumber());
    m_pSpare->mixed();
    duringReplay(m_pSpare.get(), [&] { restoreAll(log); });
    if (log.isPersistent()) m_pSpare->persistent();
    log.swap(*m_pSpare);
    log.words().trim();
    drop(*m_pSpare);
    if (m_pSpare->words().heapBytes() > c_spareBytes) m_pSpare.reset();
}

void ChangeHistory::replayForAbort(ChangeLog & log) {
    duringReplay(nullptr, [&] { restoreAll(log); });
}

// With what the hooks do beside the replay.
template <class Work>
void ChangeHistory::duringReplay(ChangeLog * inverse, Work work) {
    m_bReplaying = true;
    m_pInverse = inverse;
    try {
        work();
        m_revived.clear();
        killOrphans(DataChange::TransactReplay);
    } catch (...) { // memory ran out
        m_bReplaying = false;
        m_pInverse = nullptr;
        throw;
    }
    m_bReplaying = false;
    m_pInverse = nullptr;
}

void ChangeHistory::restoreAll(ChangeLog & log) {
    // First the dead come back, so that whatever refers to them finds them.
    for (std::size_t end = log.end(); end; end = log.before(end)) {
        Record & record = log.record(end);
        if (record.m_kind != ERecord::Died || record.m_bReplayed) continue;
        m_revived.emplace_back(record.m_pEntity);
        m_asset.enter(*record.m_pEntity);
        record.m_bReplayed = true;
        revive(*record.m_pEntity, log.payload(end));
    }
    for (std::size_t i = 0; i < m_revived.size(); ++i) {
        try {
            m_revived[i]->postCreation(DataChange::TransactReplay);
        } catch (...) {
            hookThrew();
        }
    }
    for (std::size_t end = log.end(); end; end = log.before(end)) {
        Record & record = log.record(end);
        if (record.m_bReplayed) continue;
        switch (record.m_kind) {
        case ERecord::Born:
            record.m_bReplayed = true;
            if (!(record.m_pEntity->m_flags & Entity::FlagDead))
                kill(*record.m_pEntity, DataChange::TransactReplay);
            break;
        case ERecord::Root: replayRoot(log, end); break;
        default: replayEntity(log, end);
        }
    }
}

namespace {

// Calls `visit` with each record about the entity of the record at `end` and before it in the log.
template <class Visit>
void forChain(ChangeLog & log, std::size_t end, Visit && visit) {
    for (;; end = log.record(end).m_previous) {
        visit(log.record(end), log.payload(end));
        if (log.record(end).m_previousLog != log.number()) return;
    }
}

// The kinds of all changes that such a chain records.
DataChange::EChangeType changesOf(ChangeLog & log, std::size_t end) {
    unsigned types = 0;
    forChain(log, end, [&](Record & record, std::uint64_t *) { types |= record.m_types; });
    return static_cast<DataChange::EChangeType>(types);
}

} // namespace

// The entities have their turns in the order in which an inverse would give them.  Hooks may append
// records to the log meanwhile, and make it a mixed one.
void ChangeHistory::exchangeAll(ChangeLog & log, bool undoing) {
    std::size_t const behind = log.end();
    std::size_t const first = m_pScratch->size();
    if (!m_pScratch->reserve(behind / c_recordWords)) throw std::bad_alloc();
    for (std::size_t end = behind; end; end = log.before(end)) {
        if (log.record(end).m_bReplayed) continue;
        forChain(log, end, [](Record & record, std::uint64_t *) { record.m_bReplayed = true; });
        m_pScratch->push(end);
    }
    std::size_t const entities = m_pScratch->size() - first;
    auto const place = [&](std::size_t i) {
        return static_cast<std::size_t>((*m_pScratch)[first + (undoing ? i : entities - 1 - i)]);
    };
    constexpr std::size_t c_ahead = 4;
    for (std::size_t i = 0; i < entities; ++i) {
        if (i + c_ahead < entities) prefetchEntity(log, place(i + c_ahead));
        exchangeEntity(log, place(i));
    }
    m_pScratch->truncate(first);
    for (std::size_t end = behind; end; end = log.before(end)) log.record(end).m_bReplayed = false;
}

void ChangeHistory::exchangeEntity(ChangeLog & log, std::size_t last) {
    Entity & entity = *log.record(last).m_pEntity;
    EntityChange change(&entity, DataChange::TransactReplay, changesOf(log, last),
                        DataChange::TimingPreAndPost, nullptr, true);
    auto const & leaves = entity.metaType()->layout().leaves();
    forChain(log, last, [&](Record & record, std::uint64_t * payload) {
        for (std::uint32_t i = 0; i < record.m_words; i += 2) {
            Leaf const & leaf = leaves[entryLeaf(payload[i])];
            DataModel::exchange(leaf, DataModel::field(entity, leaf), payload[i + 1]);
        }
    });
    entity.m_logNumber = log.number();
    entity.m_logRecord = static_cast<std::uint32_t>(last);
}

void ChangeHistory::recordInverse(Entity & entity, Record const & record,
                                  std::uint64_t const * payload) {
    ChangeLog & log = *m_pInverse;
    Record inverse = continued(entity, log);
    inverse.m_types = record.m_types;
    std::size_t const begin = log.end();
    if (record.m_kind == ERecord::Changed) {
        inverse.m_kind = ERecord::Changed;
        keepChanged(entity, m_asset, payload, payload + record.m_words, log);
    } else {
        Splice const splice(entity, record, payload);
        bool const isErasing = record.m_kind == ERecord::Inserted;
        std::size_t const kept = isErasing ? splice.m_count : 0; // that are there, and are about to go
        std::size_t const words =
            DataModel::elementWords(splice.m_leaf, splice.m_pField, splice.m_index, kept);
        if (!log.words().reserve(3 + words + c_recordWords)) throw std::bad_alloc();
        inverse.m_kind = isErasing ? ERecord::Erased : ERecord::Inserted;
        std::uint64_t const head[] = {payload[0], splice.m_index, splice.m_count};
        log.words().push(head, std::size(head));
        DataModel::keepElements(splice.m_leaf, splice.m_pField, splice.m_index, kept, &m_asset,
                                log.words());
        if (isErasing && splice.m_leaf.m_bOwning) log.owning();
    }
    append(log, begin, inverse);
}

void ChangeHistory::replayEntity(ChangeLog & log, std::size_t last) {
    Entity & entity = *log.record(last).m_pEntity;
    EntityChange change(&entity, DataChange::TransactReplay, changesOf(log, last),
                        DataChange::TimingPreAndPost, nullptr, true);
    for (std::size_t end = last;;) {
        Record & record = log.record(end);
        if (!record.m_bReplayed && record.m_kind != ERecord::Born) {
            record.m_bReplayed = true;
            // The inverse stands before anything changes: what follows may fail in the middle.
            if (m_pInverse) recordInverse(entity, record, log.payload(end));
            replayRecord(entity, record, log.payload(end));
            if (!m_pInverse) {
                entity.m_logRecord = record.m_previous;
                entity.m_logNumber = record.m_previousLog;
            }
        }
        if (record.m_previousLog != log.number()) break;
        end = record.m_previous;
    }
}

void ChangeHistory::replayRoot(ChangeLog & log, std::size_t end) {
    Record & record = log.record(end);
    record.m_bReplayed = true;
    std::uint64_t const * const payload = log.payload(end);
    auto & segment = *reinterpret_cast<Segment *>(static_cast<std::uintptr_t>(payload[0]));
    std::string const key(reinterpret_cast<char const *>(payload + 3),
                          static_cast<std::size_t>(payload[2]));
    auto * const old = reinterpret_cast<Entity *>(static_cast<std::uintptr_t>(record.m_leaves));
    std::size_t const place = segment.rootPlace(key);
    Entity * const present =
        place < segment.m_roots.size() ? segment.m_roots[place].second.get() : nullptr;
    if (m_pInverse)
        rootChanging(segment, key, present ? place : static_cast<std::size_t>(payload[1]), present);
    segment.placeRoot(StrongRef<Entity>(old), key, static_cast<std::size_t>(payload[1]));
}

// --- Giving up logs ----------------------------------------------------------------------------

void ChangeHistory::drop(ChangeLog & log) noexcept {
    if (!log.isOwning()) return;
    bool const wasDropping = std::exchange(m_bDropping, true);
    for (std::size_t end = log.end(); end; end = log.before(end)) {
        Record const & record = log.record(end);
        if (record.m_kind == ERecord::Born || record.m_kind == ERecord::Root
            || record.m_kind == ERecord::Inserted)
            continue;
        auto const & leaves = record.m_pEntity->metaType()->layout().leaves();
        std::uint64_t * words = log.payload(end);
        std::uint64_t * const wordsEnd = words + record.m_words;
        if (record.m_kind == ERecord::Changed)
            while (words < wordsEnd) {
                std::size_t const i = entryLeaf(*words++);
                DataModel::release(leaves[i], words);
            }
        else if (record.m_kind == ERecord::Erased) {
            Leaf const & leaf = leaves[static_cast<std::size_t>(words[0])];
            auto const count = static_cast<std::size_t>(words[2]);
            words += 3;
            DataModel::releaseElements(leaf, count, words);
        } else {
            for (Leaf const & leaf : leaves) DataModel::release(leaf, words);
        }
    }
    // Entities go last: records before that of their death mention them.
    for (std::size_t end = log.end(); end; end = log.before(end)) {
        Record const & record = log.record(end);
        if (record.m_kind == ERecord::Died && !record.m_bReplayed) letGo(*record.m_pEntity);
    }
    log.reset(0);
    m_bDropping = wasDropping;
    killLeftOrphans();
}

void ChangeHistory::killLeftOrphans() noexcept {
    if (m_bDropping || m_bReplaying || m_bKilling || (m_orphans.empty() && !m_bUnlisted)) return;
    killOrphans(DataChange::TransactDirect);
}

void ChangeHistory::dropAll(ChangeLog * last) noexcept {
    bool const wasDropping = std::exchange(m_bDropping, true);
    ChangeLog * const open = std::exchange(m_pLog, nullptr); // nothing is recorded into what goes
    while (!m_undo.empty()) dropOldest();
    dropRedo();
    for (auto const & step : m_open) {
        drop(step->m_log);
        step->m_log.reset(nextLogNumber());
    }
    if (last) drop(*last);
    m_pLog = open;
    m_baseState = ++m_lastState;
    m_bDropping = wasDropping;
    killLeftOrphans();
}

void ChangeHistory::lose() noexcept {
    dropAll(nullptr);
    m_bLost = isInTransaction();
    if (!m_bLost) m_pLog = nullptr; // that of the last step, which is gone
}

void ChangeHistory::giveUp(ChangeLog & log, ChangeLog * inverse) noexcept {
    m_bUsable = false;
    m_hookFailure = nullptr;
    bool const wasDropping = std::exchange(m_bDropping, true);
    // Orphans that the replay has taken back already go with the logs.
    std::erase_if(m_orphans, [](Entity const * orphan) { return !orphan->isAlive(); });
    dropAll(&log); // before what keeps entities that it mentions
    if (inverse) drop(*inverse);
    for (Entity * const entity : std::exchange(m_killed, {})) letGo(*entity);
    m_revived.clear();
    m_bDropping = wasDropping;
    killLeftOrphans();
}

} // namespace Vn
