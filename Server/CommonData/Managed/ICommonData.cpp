#include "Server/CommonData/Managed/ICommonData.h"

#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Server/CommonData/Managed/Ancestors.h"
#include "Server/CommonData/Managed/ICommonDataClientObject.h"
#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::CommonData {

ICommonData::~ICommonData() = default;

UniqueString const * ICommonData::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::ICommonData");
    return s_id.get();
}

UniqueString const * ICommonData::getInterfaceId() const { return interfaceId(); }

void * ICommonData::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<ICommonData *>(this) : nullptr;
}

ICommonDataHelper::ICommonDataHelper() = default;
ICommonDataHelper::ICommonDataHelper(ICommonDataHelper const & other)
    : ICommonData(other), m_rClientObject(other.m_rClientObject) {}
ICommonDataHelper & ICommonDataHelper::operator=(ICommonDataHelper const & other) {
    if (this == &other) return *this;
    ignoreClient();
    m_rClientObject = other.m_rClientObject;
    return *this;
}
// A client in another document outlives the object, and mustn't tell it of anything; nor one that
// an undo may bring back.
ICommonDataHelper::~ICommonDataHelper() {
    Entity * const client = m_rClientObject.getKept();
    if (client && m_pObserver) client->unsubscribe(m_pObserver);
}

Managed::ManagedEntity * ICommonDataHelper::managedEntity() const {
    return query<Managed::ManagedEntity>(this);
}

StrongRef<Entity> ICommonDataHelper::commonDataParent() { return managedEntity()->parent(); }

StrongRef<Entity> ICommonDataHelper::commonDataAncestor() {
    StrongRef<Entity> topmost;
    Managed::AncestorWalk walk(commonDataParent());
    while (walk) {
        topmost = walk.at();
        auto * const data = query<ICommonData>(topmost.get());
        walk.goTo(data ? data->commonDataParent() : nullptr);
    }
    return walk.metCircle() ? nullptr : topmost;
}

ICommonDataClientObject * ICommonDataHelper::commonDataClientObject() const {
    return query<ICommonDataClientObject>(m_rClientObject.get());
}

void ICommonDataHelper::commonDataClientObject(ICommonDataClientObject * client) {
    EntityChange const change(managedEntity(), DataChange::TransactDirect,
                              DataChange::ChangeStructural, DataChange::TimingPreAndPost, nullptr,
                              true);
    ignoreClient();
    m_rClientObject = PassiveRef<Entity>(query<Entity>(client));
    observeClient();
}

void ICommonDataHelper::observeClient() {
    ignoreClient();
    Entity * const client = m_rClientObject.get();
    if (!client) return;
    m_pObserver = query<IEntityObserver>(managedEntity());
    client->subscribe(m_pObserver);
}

void ICommonDataHelper::ignoreClient() {
    Entity * const client = m_rClientObject.get();
    if (client && m_pObserver) client->unsubscribe(std::exchange(m_pObserver, nullptr));
}

} // namespace Vn::CommonData
