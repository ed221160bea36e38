#ifndef VN_SERVER_COMMONDATA_MANAGED_CUSTOMGROUP_H
#define VN_SERVER_COMMONDATA_MANAGED_CUSTOMGROUP_H

#include <memory>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ICustomGroup.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::Managed {

// A group that the user has made, laid over the managed tree: it lists its members without owning
// them.  Groups may be members of groups.  Each is a managed child of the document's CustomGroups.
class VN_COMMONDATA_API CustomGroup
    : public Persisted<CustomGroup, ManagedGroupEntity, ICustomGroupParent, ICustomGroupChild> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr PersistedClass c_class{"Vn::Managed::CustomGroup",
                                            "A193F53F-86D7-4F45-A01C-51F5ECEEFC0E", 0};
    static EntityMetaType * s_metaType();

    // A group under `parent`, the document's CustomGroups, with the next number.  `groupParent` is
    // to list the group and becomes its group parent, but isn't told; with null it has none.
    static StrongRefCreator<CustomGroup> make(StrongRef<Entity> const & parent,
                                              ICustomGroupParent * groupParent);
    ~CustomGroup() override;

    // The number of the group, from 1 and never used again within the document.
    unsigned creationIndex() const noexcept { return m_creationIndex; }

    // As of ICustomGroupParent.  Anything may become a member, even of itself.
    void addGroupChild(ICustomGroupChild * child) override;
    void removeGroupChild(ICustomGroupChild * child) override;
    void insertGroupChild(ICustomGroupChild * child, unsigned index) override;
    bool canAddGroupChild(ICustomGroupChild const * child) const override;
    unsigned groupChildren() const override;
    ICustomGroupChild * groupChild(unsigned index) const override;
    // The members, with null in place of those that have died.
    std::vector<PassiveRef<ManagedEntity>> const & groupChildrenVector() const noexcept {
        return m_groupChildren;
    }

    // As of ICustomGroupChild.
    void groupParent(ICustomGroupParent * parent) override;
    ICustomGroupParent * groupParent() const override;

protected:
    // As of ManagedGroupEntity; the first with a group parent as of `make`.
    CustomGroup(PassiveRef<Entity> const & parent, ICustomGroupParent * groupParent);
    explicit CustomGroup(Segment * segment);
    CustomGroup(Segment * segment, unsigned long long id);

    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    void onPreDeletion(DataChange::ETransact transact) override;
    void onPostCreation(DataChange::ETransact transact) override;

private:
    friend class PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    std::vector<StrongRef<ManagedEntity>> livingMembers() const;

    unsigned m_creationIndex = 0;
    PassiveRef<Entity> m_rGroupParent;
    std::vector<PassiveRef<ManagedEntity>> m_groupChildren;
    // The living members as they were, while a replay is changing the list.
    std::unique_ptr<ManagedGroupEntityTransactChangeDetails> m_pTransactDetails;
};

} // namespace Vn::Managed

#endif
