#ifndef VN_SERVER_COMMONDATA_MANAGED_COMMONBASEGROUPENTITY_H
#define VN_SERVER_COMMONDATA_MANAGED_COMMONBASEGROUPENTITY_H

#include <string>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/CommonBase.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::CommonData {

// A managed group that may have a client object.
class VN_COMMONDATA_API CommonBaseGroupEntity
    : public CommonBase<CommonBaseGroupEntity, Managed::ManagedGroupEntity> {
public:
    // Name, meta-type id, which isn't written as others are, and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::CommonData::CommonBaseGroupEntity",
                                                     "A7AEA631-985B-4DD1-8CE2-DE2C-14B54081", 0};
    static EntityMetaType * s_metaType();
    // A new one under a parent, whose list it joins if that is a group; and one without a parent.
    // Null without a parent or a segment.
    static StrongRefCreator<CommonBaseGroupEntity> make(PassiveRef<Entity> const & parent);
    static StrongRefCreator<CommonBaseGroupEntity> make(Segment * segment);

    ~CommonBaseGroupEntity() override;

protected:
    // As of ManagedGroupEntity.
    explicit CommonBaseGroupEntity(PassiveRef<Entity> const & parent);
    explicit CommonBaseGroupEntity(Segment * segment);
    CommonBaseGroupEntity(Segment * segment, unsigned long long id);

    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
};

} // namespace Vn::CommonData

#endif
