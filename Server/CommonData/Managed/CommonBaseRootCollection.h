#ifndef VN_SERVER_COMMONDATA_MANAGED_COMMONBASEROOTCOLLECTION_H
#define VN_SERVER_COMMONDATA_MANAGED_COMMONBASEROOTCOLLECTION_H

#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/MigrationHelper.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/CommonBase.h"
#include "Server/CommonData/Managed/ManagedRootCollection.h"

namespace Vn::CommonData {

// Receives what version 0 of CommonBaseRootCollection stored itself.  Its base stores the same, so
// the values are read only to stay in step, and dropped.
class VN_COMMONDATA_API CommonBaseRootCollectionMigrationHelper : public MigrationHelper {
public:
    // Of an object in `segment`.
    explicit CommonBaseRootCollectionMigrationHelper(Segment * segment);
    ~CommonBaseRootCollectionMigrationHelper() override;

    // The obsolete members "rooted" and "rootId".
    std::vector<PassiveRef<Entity>> m_rooted;
    std::string m_rootId;
};

// A root collection that may have a client object.  The link to the client isn't persisted.
class VN_COMMONDATA_API CommonBaseRootCollection
    : public CommonBase<CommonBaseRootCollection, Managed::ManagedRootCollection> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::CommonData::CommonBaseRootCollection",
                                                     "5EAF2F0F-4AEE-4f20-B569-119A7BD1F36D", 1};
    static EntityMetaType * s_metaType();
    // A new one, which makes itself the root under the key `rootId`, unless that is taken, and
    // follows the entities of a type, all of them with null.  Null without a segment.
    static StrongRefCreator<CommonBaseRootCollection>
    make(Segment * segment, std::string const & rootId, EntityMetaType * elementType);

    ~CommonBaseRootCollection() override;

    void * queryMTInterface(MetaType const * type) override;

    // The helper while version 0 is being loaded, made if there is none; and its end, false if
    // there was none.  The object owns its helper.
    MigrationHelper * createMigrationHelper();
    bool deleteMigrationHelper();

protected:
    // As of ManagedRootCollection.
    CommonBaseRootCollection(Segment * segment, std::string const & rootId,
                             EntityMetaType * elementType);
    CommonBaseRootCollection(Segment * segment, unsigned long long id);

    void onPostMigrate() override;
    void doInitializeMigrationHelpers() override;
    void doUninitializeMigrationHelpers() override;
    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
};

} // namespace Vn::CommonData

#endif
