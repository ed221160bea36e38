#ifndef VN_SERVER_COMMONDATA_MANAGED_MANAGEDGROUPENTITY_H
#define VN_SERVER_COMMONDATA_MANAGED_MANAGEDGROUPENTITY_H

#include <memory>
#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedEntity.h"
#include "Server/CommonData/Managed/ManagedGroupEntityChangeDetails.h"

namespace Vn::Managed {

// A managed entity that owns an ordered list of children.
//
// A change of the list is told with a ManagedGroupEntityChangeDetails, a replay with a
// ManagedGroupEntityTransactChangeDetails.
class VN_COMMONDATA_API ManagedGroupEntity : public Persisted<ManagedGroupEntity, ManagedEntity> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr PersistedClass c_class{"Vn::Managed::ManagedGroupEntity",
                                            "834C9DEF-4C39-4587-A08D-A5BD1267B7B4", 0};
    static EntityMetaType * s_metaType();
    // A new one under a parent, whose list it joins if that is a group; and one without a parent.
    // Null without a parent or a segment.
    static StrongRefCreator<ManagedGroupEntity> make(PassiveRef<Entity> const & parent);
    static StrongRefCreator<ManagedGroupEntity> make(Segment * segment);

    ~ManagedGroupEntity() override;

    // The number of children, and each of them; the index isn't checked.
    unsigned children() const noexcept { return static_cast<unsigned>(m_children.size()); }
    StrongRef<ManagedEntity> const & child(unsigned index) const { return m_children[index]; }
    // All children in order; and a copy of the list, in place of what `out` held.
    std::vector<StrongRef<ManagedEntity>> const & childrenVector() const noexcept {
        return m_children;
    }
    void childrenVector(std::vector<StrongRef<ManagedEntity>> & out) const { out = m_children; }

    // Puts a child after the others.  If no group is its parent, this one becomes it; else its
    // parent stays.  A child that is listed already is listed twice.  Null is ignored, and so is
    // one that isn't alive or is in another document.
    void addChild(StrongRef<ManagedEntity> const & child);
    // Puts a child before the one at `index`, or after the others if there is none by then.  Its
    // parent stays as it is.  Null takes a place that all others pass over; one that isn't alive or
    // is in another document is ignored.
    void insertChild(StrongRef<ManagedEntity> const & child, unsigned index);
    // Takes the first place of a child out of the list, if there is one.  Its parent stays as it
    // is.
    void removeChild(StrongRef<ManagedEntity> const & child);

    // The child at the place that `onk` tells by its repetition; null if there is none.
    IScriptableObject * getChildObject(Onk const & onk, ObjectPath const & path) const override;

protected:
    // As of ManagedEntity.
    explicit ManagedGroupEntity(PassiveRef<Entity> const & parent);
    explicit ManagedGroupEntity(Segment * segment);
    ManagedGroupEntity(Segment * segment, unsigned long long id);

    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    void onPreDeletion(DataChange::ETransact transact) override;
    std::wstring onToString() const override;

private:
    friend class PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);

    std::vector<StrongRef<ManagedEntity>> m_children;
    // The list as it was, while a replay is changing it.
    std::unique_ptr<ManagedGroupEntityTransactChangeDetails> m_pTransactDetails;
};

} // namespace Vn::Managed

#endif
