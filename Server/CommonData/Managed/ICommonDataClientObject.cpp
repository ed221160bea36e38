#include "Server/CommonData/Managed/ICommonDataClientObject.h"

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Managed/ICommonData.h"
#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::CommonData {

ICommonDataClientObject::~ICommonDataClientObject() = default;

UniqueString const * ICommonDataClientObject::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::ICommonDataClientObject");
    return s_id.get();
}

UniqueString const * ICommonDataClientObject::getInterfaceId() const { return interfaceId(); }

void * ICommonDataClientObject::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<ICommonDataClientObject *>(this) : nullptr;
}

ICommonDataClientObjectHelper::ICommonDataClientObjectHelper() = default;
ICommonDataClientObjectHelper::ICommonDataClientObjectHelper(
    ICommonDataClientObjectHelper const & other) = default;
ICommonDataClientObjectHelper &
ICommonDataClientObjectHelper::operator=(ICommonDataClientObjectHelper const & other) = default;
ICommonDataClientObjectHelper::~ICommonDataClientObjectHelper() = default;

Managed::ManagedEntity * ICommonDataClientObjectHelper::managedEntity() const {
    return query<Managed::ManagedEntity>(this);
}

ICommonData * ICommonDataClientObjectHelper::commonData() const {
    Entity * const data = m_rCommonData ? m_rCommonData.get() : m_rOwnedCommonData.get();
    return query<ICommonData>(data);
}

void ICommonDataClientObjectHelper::commonData(ICommonData * data) {
    EntityChange const change(managedEntity(), DataChange::TransactDirect,
                              DataChange::ChangeStructural, DataChange::TimingPreAndPost, nullptr,
                              true);
    // Kept until both are set: what was held so far may be the last to hold `data`.
    StrongRef<Entity> entity(query<Entity>(data));
    if (data && data->commonDataParent()) {
        m_rCommonData = entity;
        m_rOwnedCommonData.reset();
    } else {
        m_rCommonData.reset();
        m_rOwnedCommonData.swap(entity);
    }
}

void ICommonDataClientObjectHelper::onPreDeletion(DataChange::ETransact) {
    m_rCommonData.reset();
    m_rOwnedCommonData.reset();
}

} // namespace Vn::CommonData
