#ifndef VN_SERVER_COMMONDATA_MANAGED_MANAGEDROOTCOLLECTION_H
#define VN_SERVER_COMMONDATA_MANAGED_MANAGEDROOTCOLLECTION_H

#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/EntityEvents.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::Managed {

// A root of a segment that lists all entities of one type there without owning them.  It learns of
// them from the segment's event source.
class VN_COMMONDATA_API ManagedRootCollection
    : public Persisted<ManagedRootCollection, ManagedEntity, EntityEventSite> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr PersistedClass c_class{"Vn::Managed::ManagedRootCollection",
                                            "E47053DB-8AF6-4521-81D6-523964C0C97A", 0};
    static EntityMetaType * s_metaType();
    // Only derived classes are made, each with a key of its own.
    static void make() = delete;

    ~ManagedRootCollection() override;

    // The key for which the collection was made.  If another had it first, that one is the root.
    std::string const & rootId() const noexcept { return m_rootId; }
    // The number of elements, and each of them: null for one that is gone.  The index isn't
    // checked.
    unsigned rootElements() const noexcept { return static_cast<unsigned>(m_rooted.size()); }
    StrongRef<Entity> rootElement(unsigned index) { return m_rooted[index].lock(); }

    // As of EntityEventSite: whatever comes and goes, but for a replay.
    void postCreate(EntityEvent * event) override;
    void preDelete(EntityEvent * event) override;

protected:
    // A new collection, which follows the entities of a type from its onPostCreation on; and one
    // that is being loaded, which follows none before installMetaType.
    ManagedRootCollection(Segment * segment, std::string const & rootId,
                          EntityMetaType * elementType);
    ManagedRootCollection(Segment * segment, unsigned long long id);

    // Follows the entities of a type from now on.  For derived classes, after loading.
    void installMetaType(EntityMetaType * type);

    // Puts an element after the others, unless it is in another document; and takes the first place
    // of one out if there is one.
    void addRootElement(StrongRef<Entity> const & element);
    void removeRootElement(StrongRef<Entity> const & element);

    void onPostCreation(DataChange::ETransact transact) override;
    std::wstring onToString() const override;

private:
    friend class PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    void follow();

    std::vector<PassiveRef<Entity>> m_rooted;
    std::string m_rootId;
    EntityMetaType * m_pElementMetaType = nullptr;
};

} // namespace Vn::Managed

#endif
