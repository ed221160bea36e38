#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/Base/LocalizedText.h"

#include <new>
#include <utility>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/Log/EntityAccess.h"
#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/Log/LogEntries.h"
#include "Platform/DataModel/Log/Losses.h"
#include "Platform/DataModel/Log/Recorder.h"
#include "Platform/DataModel/Log/Replay.h"
#include "Platform/DataModel/Log/Step.h"

namespace Vn {

using DataModel::ChangeLog;
using DataModel::Lifetimes;
using DataModel::Record;
using DataModel::Replay;

namespace {

// What is set aside so that a transaction can be taken back once memory has run out.
constexpr std::size_t c_reserveBytes = 65536;

} // namespace

ChangeHistory::ChangeHistory(Asset & asset)
    : m_asset(asset), m_pRecorder(std::make_unique<DataModel::Recorder>(asset, *this)),
      m_pLifetimes(std::make_unique<Lifetimes>(asset, *this, *m_pRecorder)),
      m_pLosses(std::make_unique<DataModel::Losses>()) {}

ChangeHistory::~ChangeHistory() = default;

// --- Steps -------------------------------------------------------------------------------------

Status ChangeHistory::move(bool undoing) {
    char const * const operation = undoing ? "undo" : "redo";
    if (!m_bUsable)
        return Status::failed(operation, {}, localized("memory ran out in an undo or redo before"));
    if (m_bReplaying)
        return Status::invalidArgument(operation, {}, localized("an undo or redo is running"));
    if (isInTransaction())
        return Status::invalidArgument(operation, {}, localized("a transaction is open"));
    if (m_pLifetimes->isKilling() || m_pLifetimes->isDropping())
        return Status::invalidArgument(operation, {}, localized("an entity is being deleted"));
    if (m_telling)
        return Status::invalidArgument(operation, {}, localized("a transaction is ending"));
    Steps & from = undoing ? m_undo : m_redo;
    Steps & to = undoing ? m_redo : m_undo;
    if (from.empty())
        return Status::notFound(operation, {},
                                undoing ? localized("there is nothing to undo")
                                        : localized("there is nothing to redo"));
    // What may be refused comes first: room for the step in its new place, and for the inverse of a
    // mixed log, which is used again and again.
    try {
        if (!m_pSpare) m_pSpare = std::make_unique<ChangeLog>(0);
        to.push_back(nullptr);
    } catch (std::bad_alloc const &) {
        return Status(StatusOutOfMemory, operation);
    }
    to.back() = std::move(from.back());
    from.pop_back();
    // Steps are often taken one after the other.
    if (!from.empty()) DataModel::prefetchEntity(from.back()->m_log, from.back()->m_log.end());
    Step & step = *to.back();
    m_bytes -= step.m_log.bytes();
    try {
        replay(step, undoing);
    } catch (...) {
        std::unique_ptr<Step> const half = std::move(to.back());
        to.pop_back();
        giveUp(&half->m_log, m_pSpare.get());
        throw;
    }
    m_bytes += step.m_log.bytes();
    m_pLifetimes->rethrowOfHook();
    return Status();
}

void ChangeHistory::replay(Step & step, bool undoing) {
    ChangeLog & log = step.m_log;
    Replaying const replaying(m_bReplaying);
    takeBackLate();
    if (!log.isMixed()) {
        Replay(m_asset, *m_pRecorder, *m_pLifetimes, log, &log).exchange(undoing);
        return m_pLifetimes->tellReturned(DataChange::TransactReplay);
    }
    // The inverse is written to a log that is used again and again, and then changes places.
    m_pSpare->reset(nextLogNumber());
    m_pSpare->mixed();
    Replay(m_asset, *m_pRecorder, *m_pLifetimes, log, m_pSpare.get()).restore(undoing);
    if (log.isPersistent()) m_pSpare->persistent();
    m_pLifetimes->tellTransacted(*m_pSpare, DataChange::TransactReplay);
    log.swap(*m_pSpare);
    DataModel::drop(*m_pSpare, *m_pLifetimes);
    log.words().trim(&m_pSpare->words());
    if (m_pSpare->words().heapBytes() > DataModel::WordBuffer::c_spareBytes) m_pSpare.reset();
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
    if (m_bReplaying || isInTransaction() || m_pLifetimes->isKilling()) return;
    if (m_telling) {
        m_bClearLater = true;
        return;
    }
    if (m_undo.empty() && m_redo.empty()) return;
    m_baseState = state();
    Lifetimes::Dropping const dropping(*m_pLifetimes);
    dropLate();
    while (!m_undo.empty()) dropOldest();
    dropRedo();
}

void ChangeHistory::dropOldest() noexcept {
    auto const step = std::move(m_undo.front());
    m_undo.pop_front();
    m_bytes -= step->m_log.bytes();
    DataModel::drop(step->m_log, *m_pLifetimes);
}

void ChangeHistory::dropRedo() noexcept {
    if (m_redo.empty()) return;
    Lifetimes::Dropping const dropping(*m_pLifetimes);
    while (!m_redo.empty()) {
        auto const step = std::move(m_redo.front());
        m_redo.pop_front();
        m_bytes -= step->m_log.bytes();
        DataModel::drop(step->m_log, *m_pLifetimes);
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
    std::size_t bytes = m_bytes + m_pLifetimes->bytes();
    if (m_pLate) bytes += m_pLate->bytes();
    for (auto const & step : m_open) bytes += step->m_log.bytes();
    return bytes;
}

void ChangeHistory::enforceLimits() {
    if (m_pLifetimes->isKilling() || m_telling) return;
    while (m_undo.size() > 1 && ((m_stepLimit && m_undo.size() > m_stepLimit) ||
                                 (m_byteLimit && m_bytes + m_pLifetimes->bytes() > m_byteLimit))) {
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

bool ChangeHistory::hasOpenChanges() const noexcept {
    return !m_open.empty() && !m_open.back()->m_log.empty();
}

// Steps that change nothing that is saved have the state of the one before.  Of several with the
// state that was marked, the one that is nearest to the present is answered.
std::optional<std::size_t> ChangeHistory::cleanSteps() const noexcept {
    for (std::size_t steps = m_undo.size();; --steps) {
        if ((steps ? m_undo[steps - 1]->m_state : m_baseState) == m_cleanState) return steps;
        if (steps == 0) break;
    }
    for (std::size_t i = 0; i < m_redo.size(); ++i)
        if (m_redo[m_redo.size() - 1 - i]->m_state == m_cleanState) return m_undo.size() + i + 1;
    return std::nullopt;
}

std::uint32_t ChangeHistory::nextLogNumber() noexcept {
    // Once in four thousand million: no entity may take an old log for a new one.
    if (++m_lastLog == 0) {
        DataModel::EntityAccess::table(m_asset).forEach(
            [](Entity & entity) { DataModel::EntityAccess::state(entity).place(0, 0); });
        m_lastLog = 1;
    }
    return m_lastLog;
}

void ChangeHistory::changedUnrecorded(Entity const * entity, bool isMade) noexcept {
    using DataModel::EntityAccess;
    if (m_bReplaying || m_pLifetimes->isDropping() || EntityAccess::isLoading(m_asset) ||
        EntityAccess::isClosing(m_asset) || isInTransaction())
        return;
    if (m_pLifetimes->isKilling()) return markModified(); // of a death that comes after its step
    if (m_telling) markModified();                        // the steps go once all are told
    bool const isFirst = !m_bClearLater;
    m_bUnrecorded |=
        m_pLosses->note(isFirst ? m_undo.size() : 0, isFirst ? m_redo.size() : 0, entity, isMade);
    clear();
    m_baseState = ++m_lastState;
}

void ChangeHistory::tellLosses() noexcept {
    if (m_bReplaying || isInTransaction() || m_telling || m_pRecorder->isBracketed() ||
        m_pLifetimes->isKilling() || m_pLifetimes->isDropping() || !m_asset.refCount())
        return;
    StrongRef<Asset> const kept(&m_asset); // the function may let go of it
    m_bUnrecorded = false;
    m_pLosses->tell();
}

void ChangeHistory::onUnrecorded(UnrecordedFunction function) {
    m_pLosses->function(std::move(function));
    m_bUnrecorded = false;
}

UnrecordedChanges ChangeHistory::takeUnrecorded() noexcept { return m_pLosses->take(); }

ChangeLog * ChangeHistory::lateLog() noexcept {
    if (m_undo.empty() && m_redo.empty()) return nullptr;
    try {
        if (!m_pLate) m_pLate = std::make_unique<ChangeLog>(nextLogNumber());
    } catch (std::bad_alloc const &) {
        lose();
    }
    return m_pLate.get();
}

void ChangeHistory::lateLogEnds() noexcept {
    if (!m_pLate) return;
    if (m_pLate->isPersistent()) markModified();
    if (m_pRecorder->takeLost()) dropAll(nullptr);
    if (m_pLate && m_pLate->empty()) m_pLate.reset();
}

void ChangeHistory::dropLate() noexcept {
    if (m_pLate) DataModel::drop(*m_pLate, *m_pLifetimes);
    m_pLate.reset();
}

// The steps fit the document as it was before.
void ChangeHistory::takeBackLate() {
    if (!m_pLate) return;
    Replay(m_asset, *m_pRecorder, *m_pLifetimes, *m_pLate, nullptr).restore(false);
    dropLate();
}

// --- Transactions ------------------------------------------------------------------------------

bool ChangeHistory::begin(std::wstring_view name) {
    if (m_bReplaying) return false;
    // Steps of the same name share it.
    if (!m_pName || *m_pName != name) m_pName = std::make_shared<std::wstring const>(name);
    m_open.push_back(std::make_unique<Step>(m_pName, nextLogNumber(), m_pRecorder->log()));
    ChangeLog & log = m_open.back()->m_log;
    if (!m_pSpare) m_pSpare.reset(new (std::nothrow) ChangeLog(0));
    if (m_pSpare) log.words().swap(m_pSpare->words()); // the room that the step before had
    m_pRecorder->log(&log);
    if (!m_pReserve) m_pReserve.reset(new (std::nothrow) char[c_reserveBytes]);
    return true;
}

bool ChangeHistory::commit() {
    Step & step = *m_open.back();
    ChangeLog & log = step.m_log;
    ChangeLog * const around = step.m_pAround;
    // Room comes first: without it the transaction stays open.
    if (around && !around->words().reserve(log.words().size())) throw std::bad_alloc();
    // What was recorded isn't all: nothing before can be reached.
    if (!around && m_pRecorder->takeLost()) {
        std::unique_ptr<Step> const closed = std::move(m_open.back());
        m_open.pop_back();
        m_pRecorder->log(nullptr);
        dropAll(&log);
        return false;
    }
    bool const isStep = !around && !log.empty();
    // What deaths brought with them since the last step is taken back with that, from now on.
    if (isStep && m_pLate && !m_undo.empty()) {
        ChangeLog & last = m_undo.back()->m_log;
        m_bytes -= last.bytes();
        bool const isRoom = last.words().reserve(m_pLate->words().size());
        m_bytes += last.bytes();
        if (!isRoom) throw std::bad_alloc();
    }
    std::uint64_t const before = state();
    std::unique_ptr<Step> closed;
    if (isStep) {
        m_undo.push_back(nullptr);
        joinLate();
    }
    (isStep ? m_undo.back() : closed) = std::move(m_open.back());
    m_open.pop_back();
    m_pRecorder->log(around);
    if (around && !log.empty()) join(log, *around);
    if (!isStep) return false;
    log.words().trim(m_pSpare ? &m_pSpare->words() : nullptr);
    step.m_state = log.isPersistent() ? ++m_lastState : before;
    m_bytes += log.bytes();
    dropRedo();
    tellCommitted(log);
    enforceLimits();
    return true;
}

void ChangeHistory::joinLate() {
    if (!m_pLate) return;
    if (m_undo.size() < 2) return dropLate(); // nothing leads to the state before
    ChangeLog & last = m_undo[m_undo.size() - 2]->m_log;
    m_bytes -= last.bytes();
    join(*m_pLate, last);
    m_bytes += last.bytes();
    m_pLate.reset();
}

// What hooks change now isn't part of the transaction; while they are told the log stays.
void ChangeHistory::tellCommitted(ChangeLog & log) {
    struct Telling {
        explicit Telling(ChangeHistory & history) noexcept : m_history(history) {
            ++m_history.m_telling;
        }
        ~Telling() {
            if (--m_history.m_telling == 0 && std::exchange(m_history.m_bClearLater, false))
                m_history.clear();
        }
        ChangeHistory & m_history;
    };
    Telling const telling(*this);
    m_pLifetimes->tellTransacted(log, DataChange::TransactDirect);
}

// The log becomes a part of the one around it, whose number and places its records take.
void ChangeHistory::join(ChangeLog & log, ChangeLog & around) {
    std::size_t const base = around.end();
    for (std::size_t end = log.end(); end; end = log.before(end)) {
        Record & record = log.record(end);
        if (record.previousLog == log.number()) {
            record.previousLog = around.number();
            record.previous += static_cast<std::uint32_t>(base);
        }
        if (!record.entity) continue;
        DataModel::EntityState & state = DataModel::EntityAccess::state(*record.entity);
        if (state.isIn(log.number()))
            state.place(around.number(), state.record() + static_cast<std::uint32_t>(base));
    }
    around.words().push(log.words().data(), log.words().size());
    if (log.isPersistent()) around.persistent();
    if (log.isOwning()) around.owning();
    if (log.isMixed() || base > 0) around.mixed(); // both may have recorded the same members
}

void ChangeHistory::abort() {
    std::unique_ptr<Step> const step = std::move(m_open.back());
    m_open.pop_back();
    m_pRecorder->log(nullptr);
    m_pReserve.reset();
    try {
        if (m_pRecorder->takeLost()) throw std::bad_alloc(); // what was recorded isn't all
        Replaying const replaying(m_bReplaying);
        Replay(m_asset, *m_pRecorder, *m_pLifetimes, step->m_log, nullptr).restore(false);
    } catch (...) {
        m_pRecorder->log(step->m_pAround);
        giveUp(&step->m_log, nullptr);
        throw;
    }
    m_pRecorder->log(step->m_pAround);
    DataModel::drop(step->m_log, *m_pLifetimes);
    if (std::uncaught_exceptions())
        m_pLifetimes->forgetHook();
    else
        m_pLifetimes->rethrowOfHook();
}

Transaction::Transaction(Asset & asset, std::wstring_view name)
    : m_pHistory(asset.history().begin(name) ? &asset.history() : nullptr) {
    if (!m_pHistory || !asset.adapter() || m_pHistory->m_open.size() > 1) return;
    try {
        asset.adapter()->postStartTransacting();
    } catch (...) {
        abort();
        throw;
    }
}

Transaction::~Transaction() {
    if (!m_pHistory) return;
    try {
        abort();
    } catch (...) { // what a hook of the replay threw; everything is back in place all the same
    }
}

bool Transaction::commit() {
    if (!m_pHistory) return false;
    bool const isStep = m_pHistory->commit();
    std::exchange(m_pHistory, nullptr)->tellUnrecorded(); // of what hooks changed after it
    return isStep;
}

void Transaction::abort() {
    if (m_pHistory) std::exchange(m_pHistory, nullptr)->abort();
}

// --- Want of memory ----------------------------------------------------------------------------

void ChangeHistory::dropAll(ChangeLog * last) noexcept {
    Lifetimes::Dropping const dropping(*m_pLifetimes);
    ChangeLog * const open = m_pRecorder->log();
    m_pRecorder->log(nullptr); // nothing is recorded into what goes
    for (auto const & step : m_open)
        if (step->m_pAround == m_pLate.get()) step->m_pAround = nullptr;
    dropLate();
    while (!m_undo.empty()) dropOldest();
    dropRedo();
    for (auto const & step : m_open) {
        DataModel::drop(step->m_log, *m_pLifetimes);
        step->m_log.reset(nextLogNumber());
    }
    if (last) DataModel::drop(*last, *m_pLifetimes);
    m_pRecorder->log(m_open.empty() ? nullptr : open);
    m_baseState = ++m_lastState;
}

void ChangeHistory::lose() noexcept {
    if (m_telling)
        m_bClearLater = true;
    else
        dropAll(nullptr);
    if (isInTransaction()) m_pRecorder->lost();
}

void ChangeHistory::giveUp(ChangeLog * log, ChangeLog * inverse) noexcept {
    m_bUsable = false;
    Lifetimes::Dropping const dropping(*m_pLifetimes);
    m_pLifetimes->breakOff();
    dropAll(log);
    if (inverse) DataModel::drop(*inverse, *m_pLifetimes);
}

} // namespace Vn
