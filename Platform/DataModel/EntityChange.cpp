#include "Platform/DataModel/EntityChange.h"

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/Log/Recorder.h"
#include "Platform/DataModel/MetaType.h"

namespace Vn {

namespace {

constinit InterfaceId s_summarizerId("Vn::EntityChangeSummarizer");

ChangeHistory * historyOf(Entity & entity) noexcept {
    Asset * const asset = entity.asset();
    return asset ? &asset->history() : nullptr;
}

} // namespace

EntityChangeSummarizer::~EntityChangeSummarizer() = default;
UniqueString const * EntityChangeSummarizer::interfaceId() { return s_summarizerId.get(); }
UniqueString const * EntityChangeSummarizer::getInterfaceId() const { return interfaceId(); }
void * EntityChangeSummarizer::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<EntityChangeSummarizer *>(this) : nullptr;
}

EntityChange::EntityChange(Entity * entity, DataChange::ETransact transact,
                           DataChange::EChangeType type, DataChange::ETiming timing,
                           DataChange * details, bool undoable)
    : m_pEntity(entity), m_pHistory(historyOf(*entity)), m_transact(transact), m_type(type),
      m_timing(timing), m_pDetails(details), m_exceptions(std::uncaught_exceptions()),
      m_bUndoable(undoable), m_told(type) {
    if (m_pHistory) m_pHistory->recorder().open(*this);
    if (!(timing & DataChange::TimingPre)) return;
    try {
        entity->onPreChange(transact, type, details);
    } catch (...) {
        if (!m_pHistory) throw;
        if (DataChange::test(transact, DataChange::TransactReplay)) {
            m_pHistory->lifetimes().hookThrew(); // a replay goes on whatever a hook throws
            return;
        }
        m_pHistory->recorder().close(*this);
        throw;
    }
}

EntityChange::~EntityChange() noexcept(false) {
    std::exception_ptr failure;
    try {
        tellPost();
    } catch (...) {
        failure = std::current_exception();
        if (m_pHistory && DataChange::test(m_transact, DataChange::TransactReplay)) {
            m_pHistory->lifetimes().hookThrew(); // as above
            failure = nullptr;
        }
    }
    if (m_pHistory) m_pHistory->recorder().close(*this);
    if (failure && std::uncaught_exceptions() == m_exceptions) std::rethrow_exception(failure);
}

void EntityChange::tellPost() {
    if (m_pOutermost) m_pOutermost->m_told = m_type;
    if (m_timing & DataChange::TimingPost) m_pEntity->onPostChange(m_transact, m_type, m_pDetails);
    // By index: one that is told may add another.
    for (std::size_t i = 0; i < m_summaries.size(); ++i)
        m_summaries[i].summarizer->postChange(m_summaries[i].type, m_timing);
}

EntityChangeSummarizer * EntityChange::findSummarizer(UniqueString const * interfaceId) const {
    for (Summary const & summary : m_summaries)
        if (summary.summarizer->queryInterface(interfaceId)) return summary.summarizer.get();
    return nullptr;
}

void EntityChange::add(EntityChangeSummarizer * summarizer) {
    std::unique_ptr<EntityChangeSummarizer> owned(summarizer);
    if (owned) m_summaries.push_back({std::move(owned), m_told});
}

MemberSplices::MemberSplices(Entity & entity, void const * member)
    : m_entity(entity), m_pHistory(historyOf(entity)) {
    if (m_pHistory) m_pHistory->recorder().enter(*this, member);
}

MemberSplices::~MemberSplices() {
    if (m_pHistory) m_pHistory->recorder().leave(*this);
}

void MemberSplices::inserted(std::size_t index, std::size_t count) {
    if (m_pHistory) m_pHistory->recorder().spliced(*this, true, index, count);
}

void MemberSplices::erasing(std::size_t index, std::size_t count) {
    if (m_pHistory) m_pHistory->recorder().spliced(*this, false, index, count);
}

} // namespace Vn
