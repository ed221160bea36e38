#ifndef VN_SERVER_COMMONDATA_MANAGED_COMMONBASEENTITY_H
#define VN_SERVER_COMMONDATA_MANAGED_COMMONBASEENTITY_H

#include <string>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/CommonBase.h"
#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::CommonData {

// A managed entity that may have a client object.
class VN_COMMONDATA_API CommonBaseEntity
    : public CommonBase<CommonBaseEntity, Managed::ManagedEntity> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::CommonData::CommonBaseEntity",
                                                     "63D6AD42-466A-40B7-9CCD-EB21BC500EF6", 0};
    static EntityMetaType * s_metaType();
    // A new one under a parent, whose list it joins if that is a group; and one without a parent.
    // Null without a parent or a segment.
    static StrongRefCreator<CommonBaseEntity> make(PassiveRef<Entity> const & parent);
    static StrongRefCreator<CommonBaseEntity> make(Segment * segment);

    ~CommonBaseEntity() override;

protected:
    // As of ManagedEntity.
    explicit CommonBaseEntity(PassiveRef<Entity> const & parent);
    explicit CommonBaseEntity(Segment * segment);
    CommonBaseEntity(Segment * segment, unsigned long long id);

    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
};

} // namespace Vn::CommonData

#endif
