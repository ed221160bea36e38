#include "Server/CommonData/Managed/ICommonData.h"

#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Platform/DataModel/InterfaceId.h"
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
ICommonDataHelper::ICommonDataHelper(ICommonDataHelper const & other) = default;
ICommonDataHelper & ICommonDataHelper::operator=(ICommonDataHelper const & other) = default;
ICommonDataHelper::~ICommonDataHelper() = default;

Managed::ManagedEntity * ICommonDataHelper::managedEntity() const {
    return query<Managed::ManagedEntity>(this);
}

StrongRef<Entity> ICommonDataHelper::commonDataParent() { return managedEntity()->parent(); }

StrongRef<Entity> ICommonDataHelper::commonDataAncestor() {
    StrongRef<Entity> walk = commonDataParent();
    StrongRef<Entity> result = walk;
    while (walk) {
        auto * const data = query<ICommonData>(walk.get());
        if (!data) break;
        walk = data->commonDataParent();
        if (walk) result = walk;
    }
    return result;
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
    if (Entity * const client = m_rClientObject.get())
        client->subscribe(query<IEntityObserver>(managedEntity()));
}

void ICommonDataHelper::ignoreClient() {
    if (Entity * const client = m_rClientObject.get())
        client->unsubscribe(query<IEntityObserver>(managedEntity()));
}

} // namespace Vn::CommonData
