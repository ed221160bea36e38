#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Scene/INodeSource.h"
#include "Platform/Types/Color.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"
#include "Server/CommonData/Managed/ICommonDataClientObject.h"
#include "Server/CommonData/Managed/PersistedEntity.h"

namespace Vn::Testing {

namespace {

using CommonData::CommonBaseEntity;
using CommonData::CommonBaseGroupEntity;
using CommonData::CommonBaseRootCollection;
using CommonData::ICommonDataClientObjectHelper;
using Managed::ManagedEntity;
using Managed::Persisted;
using Managed::PersistedAccess;
using Managed::PersistedClass;
using Managed::PersistedMetaType;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;

// Has a node, or none, and counts how often it is asked for it.
class NodeSource : public Scene::INodeSource {
public:
    ARenderNode * renderNode() const override {
        ++m_asked;
        if (m_bThrows) throw std::runtime_error("no device");
        return m_rNode.get();
    }
    GroupNode * groupNode() const override { return m_rNode.get(); }

    StrongRef<GroupNode> m_rNode = GroupNode::make();
    mutable int m_asked = 0;
    bool m_bThrows = false;
};

// An entity of common data that shows itself.
class Shown : public Persisted<Shown, CommonBaseEntity, NodeSource> {
public:
    static constexpr PersistedClass c_class{"Vn::Testing::Shown",
                                            "5C0F7A52-0001-4000-8000-000000000001", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Shown> make(Segment * segment) { return create(segment); }
    static StrongRefCreator<Shown> make(PassiveRef<Entity> const & parent) {
        return create(parent);
    }

private:
    friend PersistedAccess;
    explicit Shown(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    explicit Shown(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    Shown(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

// What the classes below share.
template <class X, class Base, class... Interfaces>
class Made : public Persisted<X, Base, Interfaces...> {
public:
    template <class... Arguments>
    static StrongRefCreator<X> make(Segment * segment, Arguments const &... arguments) {
        return Made::create(segment, arguments...);
    }

protected:
    using Persisted<X, Base, Interfaces...>::Persisted;
};

// A client object, which shows nothing itself.
class Client : public Made<Client, ManagedEntity, ICommonDataClientObjectHelper> {
public:
    static constexpr PersistedClass c_class{"Vn::Testing::Client",
                                            "5C0F7A52-0001-4000-8000-000000000002", 0};
    static EntityMetaType * s_metaType();

private:
    friend PersistedAccess;
    explicit Client(Segment * segment) : Made(segment) { initializeMemberSetIfNeeded(); }
    Client(Segment * segment, unsigned long long id) : Made(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
    void onPreDeletion(DataChange::ETransact transact) override {
        ManagedEntity::onPreDeletion(transact);
        ICommonDataClientObjectHelper::onPreDeletion(transact);
    }
};

// Collections of the entities of a class: a plain one, one that shows itself, and one that is a
// client object.
class Collection : public Made<Collection, CommonBaseRootCollection> {
public:
    static constexpr PersistedClass c_class{"Vn::Testing::Collection",
                                            "5C0F7A52-0001-4000-8000-000000000003", 0};
    static EntityMetaType * s_metaType();
    using CommonBaseRootCollection::addRootElement;

private:
    friend PersistedAccess;
    Collection(Segment * segment, std::string const & key, EntityMetaType * type)
        : Made(segment, key, type) {
        initializeMemberSetIfNeeded();
    }
    Collection(Segment * segment, unsigned long long id) : Made(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class ShownCollection : public Made<ShownCollection, CommonBaseRootCollection, NodeSource> {
public:
    static constexpr PersistedClass c_class{"Vn::Testing::ShownCollection",
                                            "5C0F7A52-0001-4000-8000-000000000004", 0};
    static EntityMetaType * s_metaType();

private:
    friend PersistedAccess;
    ShownCollection(Segment * segment, std::string const & key, EntityMetaType * type)
        : Made(segment, key, type) {
        initializeMemberSetIfNeeded();
    }
    ShownCollection(Segment * segment, unsigned long long id) : Made(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class ClientCollection
    : public Made<ClientCollection, CommonBaseRootCollection, ICommonDataClientObjectHelper> {
public:
    static constexpr PersistedClass c_class{"Vn::Testing::ClientCollection",
                                            "5C0F7A52-0001-4000-8000-000000000005", 0};
    static EntityMetaType * s_metaType();

private:
    friend PersistedAccess;
    ClientCollection(Segment * segment, std::string const & key, EntityMetaType * type)
        : Made(segment, key, type) {
        initializeMemberSetIfNeeded();
    }
    ClientCollection(Segment * segment, unsigned long long id) : Made(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
    void onPreDeletion(DataChange::ETransact transact) override {
        CommonBaseRootCollection::onPreDeletion(transact);
        ICommonDataClientObjectHelper::onPreDeletion(transact);
    }
};

class ShownMetaType final : public PersistedMetaType<Shown> {
} s_shown;
class ClientMetaType final : public PersistedMetaType<Client> {
} s_client;
class CollectionMetaType final : public PersistedMetaType<Collection> {
} s_collection;
class ShownCollectionMetaType final : public PersistedMetaType<ShownCollection> {
} s_shownCollection;
class ClientCollectionMetaType final : public PersistedMetaType<ClientCollection> {
} s_clientCollection;

EntityMetaType * Shown::s_metaType() { return &s_shown; }
EntityMetaType * Client::s_metaType() { return &s_client; }
EntityMetaType * Collection::s_metaType() { return &s_collection; }
EntityMetaType * ShownCollection::s_metaType() { return &s_shownCollection; }
EntityMetaType * ClientCollection::s_metaType() { return &s_clientCollection; }

class CommonDataAssetAdapterTests : public testing::Test {
protected:
    // Equips the document as the add-in does.
    void equip() {
        m_pAdapter = CommonDataAssetAdapter::defaultInitializeLoadedAsset(m_rAsset.get());
        CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(m_rAsset.get());
    }
    void addRoot(StrongRef<Entity> const & entity, std::string const & key) {
        design()->addRoot(entity, key);
    }
    StrongRef<Shown> shown() { return Shown::make(design()); }
    Segment * design() { return m_rAsset->segment(SegmentType::DesignSegment); }
    GroupNode * scene() { return m_pAdapter->scene(); }
    // The nodes below the root, without the background.
    std::vector<ARenderNode *> content() {
        std::vector<ARenderNode *> nodes;
        for (std::size_t i = 1; i < scene()->children(); ++i) nodes.push_back(scene()->child(i));
        return nodes;
    }

    StrongRef<Asset> m_rAsset = Asset::make(nullptr);
    CommonDataAssetAdapter * m_pAdapter = nullptr;
};

TEST_F(CommonDataAssetAdapterTests, TheDocumentGetsTheAdapterAndATransientSegment) {
    CommonDataAssetAdapter * const adapter =
        CommonDataAssetAdapter::defaultInitializeLoadedAsset(m_rAsset.get());
    EXPECT_EQ(m_rAsset->adapter(), adapter);
    EXPECT_EQ(adapter->asset(), m_rAsset.get());
    EXPECT_EQ(adapter->designSegment(), design());
    ASSERT_NE(adapter->transientSegment(), nullptr);
    EXPECT_EQ(adapter->transientSegment(), m_rAsset->segment(2U));
    EXPECT_TRUE(adapter->transientSegment()->isTransient());
    EXPECT_EQ(adapter->scene(), nullptr);
    EXPECT_FALSE(m_rAsset->isDirty());
}

TEST_F(CommonDataAssetAdapterTests, WithoutRootsTheBackgroundIsTheOnlyChild) {
    equip();
    ASSERT_NE(scene(), nullptr);
    EXPECT_EQ(scene()->children(), 1U);
    EXPECT_FALSE(m_rAsset->isDirty());
    EXPECT_EQ(m_rAsset->history().undoSteps(), 0U);
}

TEST_F(CommonDataAssetAdapterTests, TheBackgroundIsAsItIsDefinedToTheDigit) {
    equip();
    EXPECT_EQ(scene()->world(), 1);
    EXPECT_TRUE(scene()->visible());
    ASSERT_NE(scene()->effect(), nullptr);
    EXPECT_EQ(scene()->effect()->color, Color(0, 0.5F, 0, 1));
    EXPECT_FALSE(scene()->effect()->overrides);
    EXPECT_EQ(scene()->effect()->layer, 0);

    auto const * const node = scene()->child(0)->asGeometry();
    ASSERT_NE(node, nullptr);
    ASSERT_NE(node->effect(), nullptr);
    EXPECT_EQ(node->effect()->color, Color(1, 1, 1, 1));
    Vrx::Devices::SimpleMesh const * const mesh = node->mesh();
    ASSERT_NE(mesh, nullptr);
    for (unsigned level = 1; level < node->c_levels; ++level) EXPECT_EQ(node->mesh(level), mesh);
    EXPECT_EQ(mesh->primitiveType(), 4);
    EXPECT_EQ(mesh->box(), nullptr);

    Vrx::Devices::VertexBuffer const & vertices = *mesh->vertexBuffer();
    EXPECT_EQ(vertices.usage(), 0);
    EXPECT_EQ(vertices.access(), 3);
    EXPECT_EQ(vertices.state(), 2);
    std::vector<float> const expected = {
        -8.75F, -8.22F, -0.01F, 0, 0, 1, 0, 1, // position, normal, texture
        8.75F,  -8.22F, -0.01F, 0, 0, 1, 1, 1, //
        8.75F,  8.22F,  -0.01F, 0, 0, 1, 1, 0, //
        -8.75F, 8.22F,  -0.01F, 0, 0, 1, 0, 0};
    EXPECT_EQ(std::vector<float>(vertices.numbers().begin(), vertices.numbers().end()), expected);
    Vrx::Devices::IndexBuffer const & indices = *mesh->indexBuffer();
    std::vector<std::uint32_t> found;
    for (std::size_t i = 0; i < indices.indices(); ++i) found.push_back(indices.index(i));
    EXPECT_THAT(found, ElementsAre(0, 1, 2, 2, 3, 0));
}

TEST_F(CommonDataAssetAdapterTests, ContentWithoutAColorShowsInThatOfTheRoot) {
    StrongRef<Shown> const source = shown();
    addRoot(source, "a");
    equip();
    EXPECT_EQ(source->m_rNode->effectiveColor(), Color(0, 0.5F, 0, 1));
}

TEST_F(CommonDataAssetAdapterTests, RootsAreShownInTheirOrderAfterTheBackground) {
    StrongRef<Shown> const first = shown();
    StrongRef<Shown> const second = shown();
    addRoot(second, "b");
    addRoot(first, "a");
    equip();
    EXPECT_THAT(content(), ElementsAre(second->m_rNode.get(), first->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, ARootWithoutANodeAddsNothing) {
    StrongRef<Shown> const without = shown();
    without->m_rNode.reset();
    StrongRef<Shown> const with = shown();
    addRoot(without, "a");
    addRoot(with, "b");
    equip();
    EXPECT_EQ(without->m_asked, 1);
    EXPECT_THAT(content(), ElementsAre(with->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, ACollectionShowsItsElementsInTheirOrder) {
    StrongRef<Collection> const collection =
        Collection::make(design(), std::string("All"), Shown::s_metaType());
    StrongRef<Shown> const first = shown();
    StrongRef<Shown> const second = shown();
    equip();
    EXPECT_THAT(content(), ElementsAre(first->m_rNode.get(), second->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, ACollectionThatIsANodeSourceShowsItselfOnly) {
    StrongRef<ShownCollection> const collection =
        ShownCollection::make(design(), std::string("All"), Shown::s_metaType());
    StrongRef<Shown> const element = shown();
    equip();
    EXPECT_THAT(content(), ElementsAre(collection->m_rNode.get()));
    EXPECT_EQ(element->m_asked, 0);

    collection->m_rNode.reset();
    equip();
    EXPECT_THAT(content(), IsEmpty());
}

TEST_F(CommonDataAssetAdapterTests, ACollectionThatIsAClientShowsItsElementsAndThenItsData) {
    StrongRef<ClientCollection> const collection =
        ClientCollection::make(design(), std::string("All"), Client::s_metaType());
    StrongRef<Client> const element = Client::make(design());
    StrongRef<Shown> const ofElement = shown();
    StrongRef<Shown> const ofCollection = shown();
    element->commonData(ofElement.get());
    collection->ICommonDataClientObjectHelper::commonData(ofCollection.get());
    equip();
    EXPECT_THAT(content(), ElementsAre(ofElement->m_rNode.get(), ofCollection->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, AnElementThatAnswersNeitherIsPassedOver) {
    StrongRef<Collection> const collection =
        Collection::make(design(), std::string("All"), nullptr);
    StrongRef<CommonBaseEntity> const plain = CommonBaseEntity::make(design());
    StrongRef<Client> const withoutData = Client::make(design());
    StrongRef<Shown> const last = shown();
    collection->addRootElement(plain);
    collection->addRootElement(withoutData);
    collection->addRootElement(last);
    equip();
    EXPECT_THAT(content(), ElementsAre(last->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, AnElementThatIsGoneIsPassedOver) {
    StrongRef<Collection> const collection =
        Collection::make(design(), std::string("All"), Client::s_metaType());
    StrongRef<Shown> gone = shown();
    StrongRef<Shown> const last = shown();
    collection->addRootElement(gone);
    collection->addRootElement(last);
    gone.reset(); // of a class that the collection doesn't follow
    equip();
    EXPECT_THAT(content(), ElementsAre(last->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, ARootThatIsAClientShowsItsData) {
    StrongRef<Client> const client = Client::make(design());
    StrongRef<Shown> const data = shown();
    client->commonData(data.get());
    addRoot(client, "Client");
    equip();
    EXPECT_THAT(content(), ElementsAre(data->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, TheWayNeverLeadsFromDataToItsClient) {
    StrongRef<CommonBaseEntity> const data = CommonBaseEntity::make(design());
    StrongRef<Client> const client = Client::make(design());
    client->commonData(data.get());
    data->commonDataClientObject(client.get());
    addRoot(data, "Data");
    equip();
    EXPECT_THAT(content(), IsEmpty());
}

TEST_F(CommonDataAssetAdapterTests, GroupsAreNotDescendedInto) {
    StrongRef<CommonBaseGroupEntity> const group = CommonBaseGroupEntity::make(design());
    StrongRef<Shown> const child = Shown::make(PassiveRef<Entity>(group));
    addRoot(group, "Group");
    equip();
    EXPECT_THAT(content(), IsEmpty());
    EXPECT_EQ(child->m_asked, 0);
}

TEST_F(CommonDataAssetAdapterTests, ANodeThatIsMetTwiceStandsWhereItWasMetLast) {
    StrongRef<Shown> const twice = shown();
    addRoot(twice, "a");
    StrongRef<Shown> const between = shown();
    addRoot(between, "b");
    StrongRef<Collection> const collection = Collection::make(design(), std::string("c"), nullptr);
    collection->addRootElement(twice);
    equip();
    EXPECT_THAT(content(), ElementsAre(between->m_rNode.get(), twice->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, WithoutADesignSegmentTheBackgroundStandsAlone) {
    class Bare : public CommonDataAssetAdapter {
    public:
        using CommonDataAssetAdapter::CommonDataAssetAdapter;
        Segment * onDesignSegment() const override { return nullptr; }
    };
    addRoot(shown(), "a");
    m_rAsset->adapter(std::make_unique<Bare>(m_rAsset.get()));
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(m_rAsset.get());
    m_pAdapter = static_cast<CommonDataAssetAdapter *>(m_rAsset->adapter());
    ASSERT_NE(scene(), nullptr);
    EXPECT_EQ(scene()->children(), 1U);
}

TEST_F(CommonDataAssetAdapterTests, ASecondFirstHalfReplacesTheAdapterAndKeepsTheSegment) {
    equip();
    Segment * const transient = m_rAsset->segment(2U);
    PassiveRef<GroupNode> const graph = StrongRef<GroupNode>(scene());
    CommonDataAssetAdapter * const second =
        CommonDataAssetAdapter::defaultInitializeLoadedAsset(m_rAsset.get());
    EXPECT_EQ(m_rAsset->adapter(), second);
    EXPECT_EQ(m_rAsset->segment(2U), transient);
    EXPECT_EQ(m_rAsset->segments(), 2U);
    EXPECT_EQ(second->scene(), nullptr);
    EXPECT_FALSE(graph);
}

TEST_F(CommonDataAssetAdapterTests, ASecondSecondHalfReplacesTheGraph) {
    addRoot(shown(), "a");
    equip();
    PassiveRef<GroupNode> const graph = StrongRef<GroupNode>(scene());
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(m_rAsset.get());
    EXPECT_FALSE(graph);
    EXPECT_EQ(scene()->children(), 2U);
}

TEST_F(CommonDataAssetAdapterTests, WithoutAnAdapterTheSecondHalfDoesNothing) {
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(m_rAsset.get());
    EXPECT_EQ(m_rAsset->adapter(), nullptr);
    EXPECT_EQ(CommonDataAssetAdapter::defaultInitializeLoadedAsset(nullptr), nullptr);
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(nullptr);
}

TEST_F(CommonDataAssetAdapterTests, AnAdapterOfAnotherClassFinishesAndGetsNoGraph) {
    class Other : public Scene::SceneAssetAdapter {
    public:
        Other(Asset * asset, int & finished) : SceneAssetAdapter(asset), m_finished(finished) {}

    private:
        void onFullyInitializeLoadedAsset() override { ++m_finished; }
        int & m_finished;
    };
    int finished = 0;
    auto made = std::make_unique<Other>(m_rAsset.get(), finished);
    Other * const other = made.get();
    m_rAsset->adapter(std::move(made));
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(m_rAsset.get());
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(other->scene(), nullptr);
}

TEST_F(CommonDataAssetAdapterTests, ASourceThatThrowsLeavesTheGraphThatThereWas) {
    StrongRef<Shown> const source = shown();
    addRoot(source, "a");
    equip();
    GroupNode * const before = scene();
    source->m_bThrows = true;
    EXPECT_THROW(CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(m_rAsset.get()),
                 std::runtime_error);
    EXPECT_EQ(scene(), before);
    EXPECT_THAT(content(), ElementsAre(source->m_rNode.get()));
}

TEST_F(CommonDataAssetAdapterTests, TheInterfacesAreAskedForInTheirOrder) {
    CommonDataAssetAdapter adapter(m_rAsset.get());
    UniqueString const * const id = adapter.getInterfaceId();
    EXPECT_EQ(id, UniqueString::find("Vn::CommonDataAssetAdapter", false));
    EXPECT_EQ(query<CommonDataAssetAdapter>(&adapter), &adapter);
    EXPECT_EQ(query<Scene::SceneAssetAdapter>(&adapter), &adapter);
    EXPECT_EQ(query<AssetAdapter>(&adapter), &adapter);
    EXPECT_EQ(query<IScriptableRootObject>(&adapter), &adapter);
    EXPECT_EQ(adapter.queryInterface(Scene::INodeSource::interfaceId()), nullptr);
}

TEST_F(CommonDataAssetAdapterTests, NoNameLeadsToAnObject) {
    CommonDataAssetAdapter adapter(m_rAsset.get());
    EXPECT_EQ(adapter.getObject(Onk()), nullptr);
    EXPECT_EQ(adapter.getObject(Onk(L"AssetSettings")), nullptr);
    EXPECT_EQ(adapter.getObject(Onk(L"CmnData", 0)), nullptr);
}

} // namespace

} // namespace Vn::Testing
