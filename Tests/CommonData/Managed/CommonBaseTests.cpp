#include "Server/CommonData/Managed/CommonBaseEntity.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"
#include "Server/CommonData/Managed/ICommonDataClientObject.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/DataModel/DocumentSql.h"

namespace Vn::Managed::Testing {

namespace {

using CommonData::CommonBaseEntity;
using CommonData::CommonBaseGroupEntity;
using CommonData::CommonBaseRootCollection;
using CommonData::ICommonData;
using CommonData::ICommonDataClientObject;
using CommonData::ICommonDataClientObjectHelper;

// Common data that watches its client.
class Data : public Persisted<Data, CommonBaseEntity, IEntityObserver> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Data",
                                            "1A5B0C3E-0001-4000-8000-000000000007", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Data> make(PassiveRef<Entity> const & parent) { return create(parent); }
    static StrongRefCreator<Data> make(Segment * segment) { return create(segment); }

    void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                   DataChange *) override {}
    void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                    DataChange *) override {
        ++m_changes;
    }
    void preDeletion(Entity *, DataChange::ETransact) override { ++m_deletions; }
    std::wstring entityText() const { return Entity::onToString(); }

    int m_changes = 0;
    int m_deletions = 0;

private:
    friend PersistedAccess;
    explicit Data(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    explicit Data(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Data(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class DataGroup : public Persisted<DataGroup, CommonBaseGroupEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::DataGroup",
                                            "1A5B0C3E-0001-4000-8000-000000000008", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<DataGroup> make(PassiveRef<Entity> const & parent) {
        return create(parent);
    }
    static StrongRefCreator<DataGroup> make(Segment * segment) { return create(segment); }
    std::wstring entityText() const { return Entity::onToString(); }

private:
    friend PersistedAccess;
    explicit DataGroup(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    explicit DataGroup(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    DataGroup(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class DataCollection : public Persisted<DataCollection, CommonBaseRootCollection> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::DataCollection",
                                            "1A5B0C3E-0001-4000-8000-000000000009", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<DataCollection> make(Segment * segment) {
        return create(segment, std::string("Data"), Data::s_metaType());
    }
    std::wstring entityText() const { return Entity::onToString(); }

private:
    friend PersistedAccess;
    DataCollection(Segment * segment, std::string const & key, EntityMetaType * type)
        : Persisted(segment, key, type) {
        initializeMemberSetIfNeeded();
    }
    DataCollection(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

// A client object.
class Client : public Persisted<Client, ManagedEntity, ICommonDataClientObjectHelper> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Client",
                                            "1A5B0C3E-0001-4000-8000-00000000000A", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Client> make(Segment * segment) { return create(segment); }
    using ManagedEntity::parent;
    bool isOwning() const { return static_cast<bool>(m_rOwnedCommonData); }
    void touch() {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
    }
    void tellPreDeletion() {
        ICommonDataClientObjectHelper::onPreDeletion(DataChange::TransactDirect);
    }

private:
    friend PersistedAccess;
    explicit Client(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Client(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        addMember(set, "rCommonData", m_rCommonData, PassiveRefMetaType::get());
        addMember(set, "rOwnedCommonData", m_rOwnedCommonData, StrongRefMetaType::get());
    }
    void onPreDeletion(DataChange::ETransact transact) override {
        ManagedEntity::onPreDeletion(transact);
        ICommonDataClientObjectHelper::onPreDeletion(transact);
    }
};

class DataMetaType final : public PersistedMetaType<Data> {
} s_data;
class DataGroupMetaType final : public PersistedMetaType<DataGroup> {
} s_dataGroup;
class DataCollectionMetaType final : public PersistedMetaType<DataCollection> {
} s_dataCollection;
class ClientMetaType final : public PersistedMetaType<Client> {
} s_client;

EntityMetaType * Data::s_metaType() { return &s_data; }
EntityMetaType * DataGroup::s_metaType() { return &s_dataGroup; }
EntityMetaType * DataCollection::s_metaType() { return &s_dataCollection; }
EntityMetaType * Client::s_metaType() { return &s_client; }

class CommonBaseTests : public testing::Test {
protected:
    CommonBaseTests()
        : m_rClient(Client::make(m_document.segment())),
          m_rOther(Client::make(m_document.segment())) {}

    Document const m_document;
    StrongRef<Client> m_rClient;
    StrongRef<Client> m_rOther;
};

TEST_F(CommonBaseTests, TheParentIsThatOfTheTreeAndTheAncestorTheTopmost) {
    StrongRef<DataGroup> const top = DataGroup::make(m_document.segment());
    StrongRef<DataGroup> const middle = DataGroup::make(PassiveRef<Entity>(top));
    StrongRef<Data> const data = Data::make(PassiveRef<Entity>(middle));
    EXPECT_EQ(data->commonDataParent(), middle);
    EXPECT_EQ(data->commonDataAncestor(), top);
    EXPECT_EQ(middle->commonDataAncestor(), top);
    EXPECT_EQ(data->managedEntity(), data.get());
}

TEST_F(CommonBaseTests, WithoutAParentThereIsNoAncestor) {
    StrongRef<DataGroup> const top = DataGroup::make(m_document.segment());
    EXPECT_EQ(top->commonDataParent(), nullptr);
    EXPECT_EQ(top->commonDataAncestor(), nullptr);
}

TEST_F(CommonBaseTests, ParentsInACircleHaveNoAncestor) {
    for (int const length : {1, 2, 3, 1000}) {
        StrongRef<DataGroup> const top = DataGroup::make(m_document.segment());
        StrongRef<DataGroup> bottom = top;
        for (int i = 1; i < length; ++i) bottom = DataGroup::make(PassiveRef<Entity>(bottom));
        StrongRef<Data> const data = Data::make(PassiveRef<Entity>(bottom));
        EXPECT_EQ(data->commonDataAncestor(), top) << length;
        bottom->addChild(top); // which has no parent yet
        EXPECT_EQ(top->commonDataParent(), bottom) << length;
        EXPECT_EQ(top->commonDataAncestor(), nullptr) << length;
        EXPECT_EQ(data->commonDataAncestor(), nullptr) << length;
        top->nullParent();
        bottom->removeChild(top);
    }
}

TEST_F(CommonBaseTests, AClientIsSetInAStructuralChangeAndObserved) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    EXPECT_EQ(data->commonDataClientObject(), nullptr);
    Recorder recorder(*data);
    data->commonDataClientObject(m_rClient.get());
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    EXPECT_EQ(data->commonDataClientObject(), m_rClient.get());
    m_rClient->touch();
    EXPECT_EQ(data->m_changes, 1);
    data->unsubscribe(&recorder);
}

TEST_F(CommonBaseTests, AnotherClientIsObservedInPlaceOfTheFirst) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    data->commonDataClientObject(m_rOther.get());
    m_rClient->touch();
    EXPECT_EQ(data->m_changes, 0);
    m_rOther->touch();
    EXPECT_EQ(data->m_changes, 1);
    data->commonDataClientObject(nullptr);
    EXPECT_EQ(data->commonDataClientObject(), nullptr);
    m_rOther->touch();
    EXPECT_EQ(data->m_changes, 1);
}

TEST_F(CommonBaseTests, DataThatOffersNoObserverHasAClientAllTheSame) {
    StrongRef<DataGroup> const data = DataGroup::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    m_rClient->touch();
    EXPECT_EQ(data->commonDataClientObject(), m_rClient.get());
}

TEST_F(CommonBaseTests, DataThatIsAssignedHasTheSameClientWithoutObservingIt) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    StrongRef<Data> const other = Data::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    other->commonDataClientObject(m_rOther.get());
    CommonData::ICommonDataHelper & target = *other;
    target = *data;
    EXPECT_EQ(other->commonDataClientObject(), m_rClient.get());
    m_rClient->touch();
    m_rOther->touch();
    EXPECT_EQ(data->m_changes, 1);
    EXPECT_EQ(other->m_changes, 0);
}

TEST_F(CommonBaseTests, DataThatIsAssignedToItselfGoesOnObserving) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    CommonData::ICommonDataHelper & target = *data;
    CommonData::ICommonDataHelper const & source = *data;
    target = source;
    EXPECT_EQ(data->commonDataClientObject(), m_rClient.get());
    m_rClient->touch();
    EXPECT_EQ(data->m_changes, 1);
}

TEST_F(CommonBaseTests, AClientThatDiesFirstLeavesNull) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    m_rClient.reset();
    EXPECT_EQ(data->m_deletions, 1);
    EXPECT_EQ(data->commonDataClientObject(), nullptr);
    data->commonDataClientObject(m_rOther.get());
    EXPECT_EQ(data->commonDataClientObject(), m_rOther.get());
}

TEST_F(CommonBaseTests, DataThatDiesFirstIsNotToldOfItsClientAnyMore) {
    StrongRef<Data> data = Data::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    m_rClient->commonData(data.get()); // holds it, since it has no parent
    m_rClient->commonData(nullptr);
    data.reset();
    m_document.asset().history().clear();
    m_rClient->touch();
    EXPECT_EQ(m_rClient->commonData(), nullptr);
}

TEST_F(CommonBaseTests, DataOfADocumentThatIsClosedIsNotToldOfItsClientAnyMore) {
    {
        Document const other;
        StrongRef<DataGroup> const group = DataGroup::make(other.segment());
        other.segment()->addRoot(group, "Group");
        StrongRef<Data> const data = Data::make(PassiveRef<Entity>(group));
        data->commonDataClientObject(m_rClient.get());
        m_rClient->touch();
        EXPECT_EQ(data->m_changes, 1);
    }
    m_rClient->touch(); // tells nobody
    StrongRef<Data> const next = Data::make(m_document.segment());
    next->commonDataClientObject(m_rClient.get());
    m_rClient->touch();
    EXPECT_EQ(next->m_changes, 1);
}

TEST_F(CommonBaseTests, UndoAndRedoObserveTheClientThatTheyRestore) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    data->commonDataClientObject(m_rClient.get());
    m_document.step([&] { data->commonDataClientObject(m_rOther.get()); });
    m_document.undo();
    EXPECT_EQ(data->commonDataClientObject(), m_rClient.get());
    m_document.step([&] { m_rClient->touch(); });
    EXPECT_EQ(data->m_changes, 1);
    m_document.step([&] { m_rOther->touch(); });
    EXPECT_EQ(data->m_changes, 1);
}

TEST_F(CommonBaseTests, DataThatComesBackObservesItsClientAgain) {
    StrongRef<DataGroup> const top = DataGroup::make(m_document.segment());
    m_document.step([&] { static_cast<void>(Data::make(PassiveRef<Entity>(top))); });
    auto * const data = query<Data>(top->child(0).get());
    m_document.step([&] { data->commonDataClientObject(m_rClient.get()); });
    m_document.step([&] { top->removeChild(top->child(0)); });
    m_document.step([&] { m_rClient->touch(); }); // leaves no step, since nothing differs
    EXPECT_EQ(data->m_changes, 0);
    m_document.undo();
    ASSERT_TRUE(data->isAlive());
    EXPECT_EQ(data->commonDataClientObject(), m_rClient.get());
    m_document.step([&] { m_rClient->touch(); });
    EXPECT_EQ(data->m_changes, 1);
}

TEST_F(CommonBaseTests, AnOrphanIsKeptAliveByItsClientUntilThatLetsGo) {
    StrongRef<Data> data = Data::make(m_document.segment());
    PassiveRef<Entity> const watched(data);
    m_rClient->commonData(data.get());
    data.reset();
    ASSERT_TRUE(watched);
    EXPECT_EQ(m_rClient->commonData(), query<ICommonData>(watched.get()));
    EXPECT_TRUE(m_rClient->isOwning());
    m_rClient->commonData(nullptr);
    EXPECT_FALSE(watched);
    EXPECT_EQ(m_rClient->commonData(), nullptr);
}

TEST_F(CommonBaseTests, DataInTheTreeIsHeldPassively) {
    StrongRef<DataGroup> const top = DataGroup::make(m_document.segment());
    StrongRef<Data> data = Data::make(PassiveRef<Entity>(top));
    m_rClient->commonData(data.get());
    EXPECT_FALSE(m_rClient->isOwning());
    EXPECT_EQ(m_rClient->commonData(), data.get());
    top->removeChild(std::exchange(data, nullptr));
    EXPECT_EQ(m_rClient->commonData(), nullptr);
}

TEST_F(CommonBaseTests, AnOrphanThatHasMovedIntoTheTreeChangesOverOnceItIsSetAgain) {
    StrongRef<DataGroup> const top = DataGroup::make(m_document.segment());
    StrongRef<Data> const data = Data::make(m_document.segment());
    m_rClient->commonData(data.get());
    top->addChild(data);
    EXPECT_TRUE(m_rClient->isOwning());
    m_rClient->commonData(data.get());
    EXPECT_FALSE(m_rClient->isOwning());
    EXPECT_EQ(m_rClient->commonData(), data.get());
    top->removeChild(data);
    data->nullParent();
    m_rClient->commonData(data.get());
    EXPECT_TRUE(m_rClient->isOwning());
}

TEST_F(CommonBaseTests, TheSameOrphanMayBeSetAgainByItsOnlyHolder) {
    PassiveRef<Entity> watched;
    {
        StrongRef<Data> const data = Data::make(m_document.segment());
        watched = data;
        m_rClient->commonData(data.get());
    }
    m_rClient->commonData(m_rClient->commonData());
    EXPECT_TRUE(watched);
    EXPECT_TRUE(m_rClient->isOwning());
}

TEST_F(CommonBaseTests, CommonDataIsSetInAStructuralChange) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    Recorder recorder(*m_rClient);
    m_rClient->commonData(data.get());
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    m_rClient->unsubscribe(&recorder);
}

TEST_F(CommonBaseTests, AClientsPreDeletionLeavesNoCommonData) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    m_rClient->commonData(data.get());
    m_rClient->tellPreDeletion();
    EXPECT_EQ(m_rClient->commonData(), nullptr);
    EXPECT_FALSE(m_rClient->isOwning());
}

TEST_F(CommonBaseTests, AClientThatDiesReleasesItsOrphan) {
    PassiveRef<Entity> watched;
    {
        StrongRef<Data> const data = Data::make(m_document.segment());
        watched = data;
        m_rClient->commonData(data.get());
    }
    ASSERT_TRUE(watched);
    m_rClient.reset();
    EXPECT_FALSE(watched);
}

TEST_F(CommonBaseTests, QueryInterfaceOffersCommonDataAfterTheManagedBase) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    StrongRef<DataGroup> const group = DataGroup::make(m_document.segment());
    StrongRef<DataCollection> const collection = DataCollection::make(m_document.segment());
    EXPECT_EQ(data->queryInterface(ICommonData::interfaceId()),
              static_cast<ICommonData *>(data.get()));
    EXPECT_EQ(group->queryInterface(ICommonData::interfaceId()),
              static_cast<ICommonData *>(group.get()));
    EXPECT_EQ(collection->queryInterface(ICommonData::interfaceId()),
              static_cast<ICommonData *>(collection.get()));
    EXPECT_EQ(group->queryInterface(ManagedGroupEntity::interfaceId()), group.get());
    EXPECT_EQ(collection->queryInterface(ManagedRootCollection::interfaceId()), collection.get());
    EXPECT_EQ(m_rClient->queryInterface(ICommonDataClientObject::interfaceId()),
              static_cast<ICommonDataClientObject *>(m_rClient.get()));
    EXPECT_EQ(m_rClient->queryInterface(ICommonData::interfaceId()), nullptr);
}

TEST_F(CommonBaseTests, TheDebugLinesSayWhetherThereIsAClient) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    StrongRef<DataGroup> const group = DataGroup::make(m_document.segment());
    StrongRef<DataCollection> const collection = DataCollection::make(m_document.segment());
    auto const expectLines = [&](wchar_t const * flag) {
        EXPECT_EQ(data->toString(), L"CommonBaseEntData (base ManagedEntity (base " +
                                        data->entityText() +
                                        L") : HasParent: 0) HasClientObject: " + flag);
        EXPECT_EQ(group->toString(),
                  L"CommonBaseEntData (base ManagedGroupEntity (base ManagedEntity (base " +
                      group->entityText() + L") : HasParent: 0) children : 0) HasClientObject: " +
                      flag);
        EXPECT_EQ(
            collection->toString(),
            L"CommonBaseRootCollection (base ManagedRootCollection (base ManagedEntity (base " +
                collection->entityText() +
                L") : HasParent: 0) root id Data : rooted objects: 0 ) HasClientObject: " + flag);
    };
    expectLines(L"0");
    data->commonDataClientObject(m_rClient.get());
    group->commonDataClientObject(m_rClient.get());
    collection->commonDataClientObject(m_rClient.get());
    expectLines(L"1");
}

TEST_F(CommonBaseTests, TheClientOfACollectionIsNoMemberAndThatOfOthersIs) {
    StrongRef<Data> const data = Data::make(m_document.segment());
    StrongRef<DataCollection> const collection = DataCollection::make(m_document.segment());
    EXPECT_NE(CommonBaseEntity::s_metaType()->memberSet(c_latestVersion)->find("rClientObject"),
              nullptr);
    EXPECT_EQ(CommonBaseRootCollection::s_metaType()->memberSet(c_latestVersion)->members(), 0U);
    m_document.step([&] {
        data->commonDataClientObject(m_rClient.get());
        collection->commonDataClientObject(m_rClient.get());
    });
    m_document.undo();
    EXPECT_EQ(data->commonDataClientObject(), nullptr);
    EXPECT_EQ(collection->commonDataClientObject(), m_rClient.get());
}

// A file as version 0 wrote it: the class's own "rooted" and "rootId" stand after those of its
// base.
TEST_F(CommonBaseTests, ARootCollectionOfVersionZeroLoadsWithWhatItsBaseStored) {
    TemporaryFile const file;
    unsigned long long dataId = 0;
    unsigned long long collectionId = 0;
    {
        StrongRef<DataCollection> const collection = DataCollection::make(m_document.segment());
        StrongRef<DataGroup> const root = DataGroup::make(m_document.segment());
        m_document.segment()->addRoot(root, "Root");
        StrongRef<Data> const data = Data::make(PassiveRef<Entity>(root));
        dataId = data->id();
        collectionId = collection->id();
        Status const status = DocumentFile::saveAs(m_document.asset(), file.path());
        ASSERT_TRUE(status.ok()) << status.toString();
    }
    std::string const older = "(SELECT number FROM types WHERE name='DataCollectionMetaType')";
    Vn::Testing::Sql(file.path())
        .run("UPDATE types SET version=0 WHERE id='5EAF2F0F-4AEE-4f20-B569-119A7BD1F36D';"
             "INSERT INTO members VALUES(" +
             older +
             ", 3, 'CommonBaseRootCollection', 'rooted', 'Vector', 'PassiveRef', NULL, NULL);"
             "INSERT INTO members VALUES(" +
             older +
             ", 4, 'CommonBaseRootCollection', 'rootId', 'std::string', NULL,"
             " 'CommonBaseRootCollection.rootId', NULL);"
             "CREATE TABLE rows AS SELECT * FROM DataCollection; DROP TABLE DataCollection;"
             "CREATE TABLE \"DataCollection\"(id INTEGER PRIMARY KEY, segment, "
             "\"ManagedEntity.rParent\", \"ManagedRootCollection.rootId\", "
             "\"CommonBaseRootCollection.rootId\");"
             "INSERT INTO DataCollection SELECT *, 'obsolete' FROM rows; DROP TABLE rows;"
             "INSERT INTO lists VALUES(" +
             std::to_string(collectionId) + ", 3, 0, '[" + std::to_string(dataId) + "," +
             std::to_string(dataId) + "]');");

    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(file.path(), nullptr, asset);
    ASSERT_TRUE(status.ok()) << status.toString();
    EXPECT_FALSE(asset->isMigrating());
    StrongRef<Entity> const loaded = asset->segment(1U)->rootEntity("Data");
    auto * const collection = query<CommonBaseRootCollection>(loaded.get());
    ASSERT_NE(collection, nullptr);
    EXPECT_EQ(collection->rootId(), "Data");
    ASSERT_EQ(collection->rootElements(), 1U);
    EXPECT_EQ(collection->rootElement(0), asset->entity(dataId));
    EXPECT_EQ(collection->migrationHelper(), nullptr);
    EXPECT_EQ(collection->CommonBaseRootCollection::version(), 1U);
    EXPECT_FALSE(loaded->isMarkedMigrating());
}

TEST_F(CommonBaseTests, ATreeWithClientsAndGroupsIsSavedAndLoaded) {
    TemporaryFile const file;
    StrongRef<DataGroup> const root = DataGroup::make(m_document.segment());
    m_document.segment()->addRoot(root, "Root");
    StrongRef<Data> const data = Data::make(PassiveRef<Entity>(root));
    root->addChild(m_rClient);
    data->commonDataClientObject(m_rClient.get());
    m_rClient->commonData(data.get());
    StrongRef<CustomGroups> const groups = CustomGroups::make(PassiveRef<Entity>(root));
    StrongRef<CustomGroup> const top = CustomGroup::make(groups, nullptr);
    StrongRef<CustomGroup> const inner = CustomGroup::make(groups, top.get());
    top->addGroupChild(inner.get());
    std::wstring const line = root->toString();
    Status status = DocumentFile::saveAs(m_document.asset(), file.path());
    ASSERT_TRUE(status.ok()) << status.toString();

    StrongRef<Asset> asset;
    status = DocumentFile::load(file.path(), nullptr, asset);
    ASSERT_TRUE(status.ok()) << status.toString();
    StrongRef<Entity> const loaded = asset->segment(1U)->rootEntity("Root");
    auto const * const again = query<ManagedGroupEntity>(loaded.get());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(loaded->toString(), line);
    ASSERT_EQ(again->children(), 3U);
    EXPECT_EQ(again->child(0)->managedParent().get(), again);
    auto * const dataAgain = query<Data>(again->child(0).get());
    auto * const clientAgain = query<Client>(again->child(1).get());
    auto * const groupsAgain = query<CustomGroups>(again->child(2).get());
    ASSERT_TRUE(dataAgain && clientAgain && groupsAgain);
    EXPECT_EQ(dataAgain->commonDataClientObject(), clientAgain);
    EXPECT_EQ(clientAgain->commonData(), dataAgain);
    EXPECT_FALSE(clientAgain->isOwning());
    ASSERT_EQ(groupsAgain->groups(), 2U);
    StrongRef<CustomGroup> const topAgain = groupsAgain->group(0);
    EXPECT_EQ(topAgain->groupParent(), nullptr);
    ASSERT_EQ(topAgain->groupChildren(), 1U);
    EXPECT_EQ(topAgain->groupChild(0), groupsAgain->group(1).get());
    EXPECT_EQ(groupsAgain->group(1)->groupParent(), topAgain.get());
    EXPECT_EQ(groupsAgain->group(1)->creationIndex(), 2U);
    EXPECT_EQ(groupsAgain->getNextID(), 3);
}

} // namespace

} // namespace Vn::Managed::Testing
