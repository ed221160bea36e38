#ifndef VN_SERVER_COMMONDATA_MANAGED_CUSTOMGROUPS_H
#define VN_SERVER_COMMONDATA_MANAGED_CUSTOMGROUPS_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"

namespace Vn::Managed {

class CustomGroup;

// All custom groups of a document, as managed children, whatever groups they are members of.
class VN_COMMONDATA_API CustomGroups
    : public Persisted<CustomGroups, CommonData::CommonBaseGroupEntity> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr PersistedClass c_class{"Vn::Managed::CustomGroups",
                                            "B5B50E5B-EDC8-4309-82A3-C53B3E82033D", 0};
    static EntityMetaType * s_metaType();

    // The groups of a document, without any yet.  A null creator if `parent` is null.
    static StrongRefCreator<CustomGroups> make(PassiveRef<Entity> const & parent);
    ~CustomGroups() override;

    // The next number for a group, from 1.
    int getNextID();

    // The number of groups, and each of them; the index isn't checked.
    unsigned groups() const noexcept { return children(); }
    StrongRef<CustomGroup> group(unsigned index);

protected:
    // As of ManagedGroupEntity.
    explicit CustomGroups(PassiveRef<Entity> const & parent);
    explicit CustomGroups(Segment * segment);
    CustomGroups(Segment * segment, unsigned long long id);

    std::wstring onToString() const override;

private:
    friend class PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    // For those who set members by name: the mark only goes up, since no number is given twice.
    static Status setHighWaterMark(CustomGroups & groups, int const & mark);

    int m_highWaterMark = 0;
};

} // namespace Vn::Managed

#endif
