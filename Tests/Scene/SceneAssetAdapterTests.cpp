#include "Platform/Scene/SceneAssetAdapter.h"

#include <cstddef>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/Graphics/VertexBufferBuilder.h"
#include "Platform/Scene/Buffers.h"
#include "Platform/Scene/NodeChange.h"
#include "Tests/DataModel/FailingAllocations.h"
#include "Tests/Scene/SceneTesting.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualPlace.h"

namespace Vn::Scene {

namespace {

using namespace Testing;
using Vn::Testing::FailingAllocations;
using Vn::Testing::placeOf;
using Vrx::Devices::SimpleMesh;
using Vrx::Graphics::EffectParams;

// An adapter that shows a square, as an application would.
class Equipment : public SceneAssetAdapter {
public:
    using SceneAssetAdapter::SceneAssetAdapter;

    // The place of each virtual operation that SceneAssetAdapter adds.
    static std::vector<std::size_t> places();

    // Makes a root with the square as its only child.
    void show() {
        NodeChange change;
        scene(change.createGroupNode(nullptr, 1, false, true));
        change.invalidate(0xFFFF);
        showSquare();
    }
    void onSavePreview() override {
        ++m_previews;
        if (m_bPreviewFails) throw std::runtime_error("no device");
    }

    int m_previews = 0;
    bool m_bPreviewFails = false;

private:
    void showSquare() {
        Vrx::Devices::VertexBufferBuilder builder(4, makeVertexFormat(true, 1));
        for (int i = 0; i < 4; ++i) {
            float const x = i == 1 || i == 2 ? 1.0F : -1.0F;
            float const y = i < 2 ? -1.0F : 1.0F;
            builder.AddPosition(x, y, -0.01F);
            builder.Normal(0, 0, 1);
            builder.TexCoord2D(0, (x + 1) / 2, (1 - y) / 2);
        }
        int const indices[] = {0, 1, 2, 2, 3, 0};
        StrongRef<SimpleMesh> const mesh(new SimpleMesh(4, builder.ToVertexBuffer(nullptr, 0, 3, 2),
                                                        BuildIndexBuffer(indices, 6, true),
                                                        nullptr));
        StrongRef<ARenderNode> node;
        {
            NodeChange change;
            node = StrongRef<ARenderNode>(change.createLODGeometryNode(nullptr, true));
            change.geometry(mesh.get(), 0xF);
            change.colorEffect(Color(1, 1, 1, 1), false, 0);
        }
        NodeChange change(scene(), false);
        change.addChild(node.get());
        change.colorEffect(Color(0, 0.5, 0, 1), false, 0);
    }
};

std::vector<std::size_t> Equipment::places() {
    return {placeOf(&Equipment::onSavePreview),
            placeOf(&Equipment::sceneEffectParams),
            placeOf(&Equipment::layerEffectParams),
            placeOf(&Equipment::selectionEffectParams),
            placeOf(&Equipment::highlightEffectParams),
            placeOf(&Equipment::sketchSelectionEffectParams)};
}

class SceneAssetAdapterTests : public testing::Test {
protected:
    SceneAssetAdapterTests() {
        auto made = std::make_unique<Equipment>(m_rAsset.get());
        m_pEquipment = made.get();
        m_rAsset->adapter(std::move(made));
    }

    StrongRef<Asset> m_rAsset = Asset::make(nullptr);
    Equipment * m_pEquipment = nullptr;
    StrongRef<GroupNode> const m_rRoot = GroupNode::make();
};

// How many virtual operations there are below: the two destructors, and those of Object and
// AssetAdapter.
constexpr std::size_t c_placesBelow = 2 + 2 + 15;

TEST_F(SceneAssetAdapterTests, TheVirtualOperationsGoOnAfterThoseOfTheBase) {
    std::vector<std::size_t> const places = Equipment::places();
    for (std::size_t i = 0; i < places.size(); ++i) EXPECT_EQ(places[i], c_placesBelow + i);
}

TEST_F(SceneAssetAdapterTests, TheAdapterIsFoundByItsInterface) {
    AssetAdapter const * const adapter = m_rAsset->adapter();
    EXPECT_EQ(query<SceneAssetAdapter>(adapter), m_pEquipment);
    EXPECT_EQ(query<AssetAdapter>(adapter), m_pEquipment);
    EXPECT_EQ(SceneAssetAdapter::interfaceId(),
              UniqueString::find("Vn::Scene::SceneAssetAdapter", false));
}

TEST_F(SceneAssetAdapterTests, ThereIsNoRootUntilOneIsSet) {
    EXPECT_EQ(m_pEquipment->scene(), nullptr);
    m_pEquipment->scene(m_rRoot.get());
    EXPECT_EQ(m_pEquipment->scene(), m_rRoot.get());
    m_pEquipment->scene(nullptr);
    EXPECT_EQ(m_pEquipment->scene(), nullptr);
    EXPECT_EQ(m_rRoot->refCount(), 1U);
}

TEST_F(SceneAssetAdapterTests, TheRootIsHeldAndLetGoAtTheEnd) {
    PassiveRef<GroupNode> root;
    {
        StrongRef<GroupNode> const made = GroupNode::make();
        root = made;
        m_pEquipment->scene(made.get());
    }
    EXPECT_TRUE(root);
    m_rAsset.reset();
    EXPECT_FALSE(root);
}

TEST_F(SceneAssetAdapterTests, ARootThatACallerHoldsStaysAfterTheDocument) {
    m_pEquipment->show();
    StrongRef<GroupNode> const held(m_pEquipment->scene());
    m_rAsset.reset();
    EXPECT_EQ(held->children(), 1U);
    EXPECT_EQ(held->observers(), nullptr);
    EXPECT_EQ(held->refCount(), 1U);
}

TEST_F(SceneAssetAdapterTests, TheRootIsThereAtOnceAndItsContentWhenTheBracketCloses) {
    NodeChange * const outer = new NodeChange;
    m_pEquipment->show();
    ASSERT_TRUE(m_pEquipment->scene());
    EXPECT_EQ(m_pEquipment->scene()->children(), 0U);
    EXPECT_FALSE(m_pEquipment->scene()->effectiveColor());
    delete outer;
    EXPECT_EQ(m_pEquipment->scene()->children(), 1U);
    EXPECT_EQ(m_pEquipment->scene()->effectiveColor(), Color(0, 0.5F, 0, 1));
}

TEST_F(SceneAssetAdapterTests, AMeshCanBeReadBackFromTheScene) {
    m_pEquipment->show();
    ARenderNode const * const square = m_pEquipment->scene()->firstChild();
    EXPECT_EQ(square->effectiveColor(), Color(1, 1, 1, 1));
    for (unsigned level = 1; level < 4; ++level)
        EXPECT_EQ(square->asGeometry()->mesh(level), square->asGeometry()->mesh(0));
    SimpleMesh const & mesh = *square->asGeometry()->mesh();
    EXPECT_EQ(mesh.triangles(), 2U);
    EXPECT_EQ(mesh.vertexBuffer()->texCoord(3, 0), (std::array<float, 2>{0, 0}));
    EXPECT_EQ(mesh.bounds()->low.z, double{-0.01F});
}

TEST_F(SceneAssetAdapterTests, ARootOfADroppedBracketIsTakenBack) {
    m_pEquipment->scene(m_rRoot.get());
    Recorder recorder;
    m_pEquipment->observers().subscribe(&recorder);
    try {
        NodeChange const change;
        m_pEquipment->show();
        m_pEquipment->scene(nullptr);
        m_pEquipment->show();
        throw std::runtime_error("stop");
    } catch (std::runtime_error const &) {}
    EXPECT_EQ(m_pEquipment->scene(), m_rRoot.get());
    EXPECT_TRUE(recorder.m_told.empty());
    NodeChange(m_rRoot.get(), false).colorEffect(Color(1, 0, 0, 1), false, 0);
    EXPECT_EQ(recorder.m_told.size(), 1U); // it is watched again
    m_pEquipment->observers().unsubscribe(&recorder);
}

TEST_F(SceneAssetAdapterTests, AnAdapterMayEndWithinABracketThatIsDropped) {
    m_pEquipment->scene(m_rRoot.get());
    try {
        NodeChange const change;
        m_pEquipment->show();
        m_rAsset.reset();
        throw std::runtime_error("stop");
    } catch (std::runtime_error const &) {}
    EXPECT_EQ(m_rRoot->observers(), nullptr);
    EXPECT_EQ(m_rRoot->refCount(), 1U);
}

TEST_F(SceneAssetAdapterTests, ObserversStayWithTheSceneWhicheverItsRootIs) {
    Recorder recorder;
    m_pEquipment->observers().subscribe(&recorder);
    m_pEquipment->show();
    StrongRef<GroupNode> const former(m_pEquipment->scene());
    ASSERT_EQ(recorder.m_told.size(), 1U);
    EXPECT_EQ(recorder.m_told[0][0], Told::value_type(former.get(), Vrx::Graphics::ChangeAll));
    m_pEquipment->scene(m_rRoot.get());
    EXPECT_EQ(recorder.m_told.back(), (Told{{m_rRoot.get(), Vrx::Graphics::ChangeAll}}));
    m_pEquipment->scene(m_rRoot.get()); // no change
    NodeChange(former.get(), false).visible(false);
    EXPECT_EQ(recorder.m_told.size(), 2U); // it isn't watched any more
    m_pEquipment->observers().unsubscribe(&recorder);
}

TEST_F(SceneAssetAdapterTests, EachSaveMakesAPreviewAndIsDoneWithoutIfThatFails) {
    Vn::Testing::TemporaryDirectory const directory;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, directory.path() / "a.vnd"));
    EXPECT_EQ(m_pEquipment->m_previews, 1);
    m_pEquipment->m_bPreviewFails = true;
    EXPECT_TRUE(DocumentFile::saveAs(*m_rAsset, directory.path() / "b.vnd"));
    EXPECT_EQ(m_pEquipment->m_previews, 2);
    EXPECT_THROW(m_pEquipment->savePreview(), std::runtime_error);
}

TEST_F(SceneAssetAdapterTests, EffectsOfWhatIsSelectedOverrideInRisingLayers) {
    SceneAssetAdapter const plain(nullptr);
    EXPECT_FALSE(plain.sceneEffectParams().overrides);
    EXPECT_FALSE(plain.layerEffectParams().overrides);
    EXPECT_TRUE(plain.selectionEffectParams().overrides);
    EXPECT_LT(plain.sceneEffectParams().layer, plain.layerEffectParams().layer);
    EXPECT_LT(plain.layerEffectParams().layer, plain.selectionEffectParams().layer);
    EXPECT_LT(plain.selectionEffectParams().layer, plain.highlightEffectParams().layer);
    EXPECT_LT(plain.highlightEffectParams().layer, plain.sketchSelectionEffectParams().layer);
}

TEST_F(SceneAssetAdapterTests, TenThousandDocumentsLeaveNothingBehind) {
    auto const openAndClose = [] {
        StrongRef<Asset> const asset = Asset::make(nullptr);
        auto made = std::make_unique<Equipment>(asset.get());
        Equipment & equipment = *made;
        asset->adapter(std::move(made));
        equipment.show();
        NodeChange(equipment.scene(), false)
            .addChild(StrongRef<GroupNode>(GroupNode::make()).get());
    };
    openAndClose(); // what is made once and kept
    long const before = FailingAllocations::living();
    for (int i = 0; i < 10'000; ++i) openAndClose();
    EXPECT_EQ(FailingAllocations::living(), before);
}

// Whichever allocation fails, the scene is the one before or the one after, and nothing is left of
// the other.
TEST_F(SceneAssetAdapterTests, AnAllocationThatFailsLeavesTheSceneBeforeOrAfter) {
    Recorder recorder;
    m_pEquipment->observers().subscribe(&recorder);
    m_pEquipment->show();
    recorder.m_told.clear();
    StrongRef<GroupNode> const before(m_pEquipment->scene());
    long const living = FailingAllocations::living();
    unsigned long n = 0;
    for (bool failed = true; failed;) {
        FailingAllocations::failAt(++n, false);
        bool threw = false;
        try {
            m_pEquipment->show();
        } catch (std::bad_alloc const &) {
            threw = true;
        }
        FailingAllocations::heal();
        failed = FailingAllocations::hasFailed();
        ASSERT_EQ(m_pEquipment->scene() == before.get(), threw) << "allocation " << n;
        ASSERT_EQ(m_pEquipment->scene()->children(), 1U) << "allocation " << n;
        ASSERT_EQ(m_pEquipment->scene()->effectiveColor(), Color(0, 0.5F, 0, 1));
        ASSERT_EQ(m_pEquipment->scene()->observers(), &m_pEquipment->observers());
        m_pEquipment->scene(before.get());
        recorder.m_told.clear();
        ASSERT_EQ(FailingAllocations::living(), living) << "allocation " << n;
    }
    EXPECT_GT(n, 10U);
    m_pEquipment->observers().unsubscribe(&recorder);
}

} // namespace

} // namespace Vn::Scene
