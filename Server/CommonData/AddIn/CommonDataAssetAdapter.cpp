#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"

#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Graphics/VertexBufferBuilder.h"
#include "Platform/Scene/Buffers.h"
#include "Platform/Scene/INodeSource.h"
#include "Platform/Scene/NodeChange.h"
#include "Platform/Types/Color.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"
#include "Server/CommonData/Managed/ICommonData.h"
#include "Server/CommonData/Managed/ICommonDataClientObject.h"

namespace Vn {

namespace {

using CommonData::CommonBaseRootCollection;
using CommonData::ICommonDataClientObject;
using Scene::INodeSource;
using Scene::NodeChange;
using Vrx::Devices::SimpleMesh;
using Vrx::Devices::VertexBufferBuilder;

SegmentType * segmentType(SegmentType::EVantorType type) {
    return SegmentTypeMgr::get()->segmentType(type);
}

void addNode(NodeChange & change, INodeSource const & source) {
    if (Vrx::Graphics::ARenderNode * const node = source.renderNode()) change.addChild(node);
}

// The node of the common data of a client object.  The way never leads back from data to client.
void addCommonDataNode(NodeChange & change, Entity & entity) {
    auto const * const client = query<ICommonDataClientObject>(&entity);
    auto const * const source = client ? query<INodeSource>(client->commonData()) : nullptr;
    if (source) addNode(change, *source);
}

void addElementNodes(NodeChange & change, CommonBaseRootCollection & collection) {
    for (unsigned i = 0; i < collection.rootElements(); ++i) {
        StrongRef<Entity> const element = collection.rootElement(i);
        if (!element) continue;
        if (auto const * const source = query<INodeSource>(element.get()))
            addNode(change, *source);
        else
            addCommonDataNode(change, *element);
    }
}

void addRootNodes(NodeChange & change, Entity & root) {
    if (auto const * const source = query<INodeSource>(&root)) return addNode(change, *source);
    if (auto * const collection = query<CommonBaseRootCollection>(&root))
        addElementNodes(change, *collection);
    addCommonDataNode(change, root);
}

void addContent(NodeChange & change, Segment const & design) {
    std::vector<std::string> keys;
    design.rootEntityIds(keys);
    for (std::string const & key : keys)
        if (StrongRef<Entity> const root = design.rootEntity(key)) addRootNodes(change, *root);
}

} // namespace

CommonDataAssetAdapter::CommonDataAssetAdapter(Asset * asset) : Identified(asset) {}
CommonDataAssetAdapter::~CommonDataAssetAdapter() = default;

CommonDataAssetAdapter * CommonDataAssetAdapter::defaultInitializeLoadedAsset(Asset * asset) {
    if (!asset) return nullptr;
    auto made = std::make_unique<CommonDataAssetAdapter>(asset);
    CommonDataAssetAdapter * const adapter = made.get();
    asset->adapter(std::move(made));
    adapter->initializeLoadedAsset();
    Segment::create(asset, segmentType(SegmentType::TransientSegment), true);
    return adapter;
}

void CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(Asset * asset) {
    if (!asset || !asset->adapter()) return;
    asset->adapter()->fullyInitializeLoadedAsset();
    if (auto * const adapter = query<CommonDataAssetAdapter>(asset->adapter()))
        adapter->createGraphicsRoot();
}

IScriptableObject * CommonDataAssetAdapter::getObject(Onk const &) { return nullptr; }

Segment * CommonDataAssetAdapter::onDesignSegment() const {
    return asset() ? asset()->segment(segmentType(SegmentType::DesignSegment)) : nullptr;
}
Segment * CommonDataAssetAdapter::onTransientSegment() const {
    return asset() ? asset()->segment(segmentType(SegmentType::TransientSegment)) : nullptr;
}

// If an exception leaves this, the scene shows what it showed before.
void CommonDataAssetAdapter::createGraphicsRoot() {
    NodeChange change;
    scene(change.createGroupNode(nullptr, Vrx::Scene::WorldModel, false, true));
    change.invalidate(0xFFFF);
    createDefaultBackground();
    if (Segment const * const design = designSegment()) addContent(change, *design);
}

void CommonDataAssetAdapter::createDefaultBackground() {
    // Positions in cm.  The texture's v runs down where y runs up, so that a picture stands upright
    // seen from above.
    struct Corner {
        float x, y, z, u, v;
    };
    constexpr Corner c_corners[] = {{-8.75F, -8.22F, -0.01F, 0, 1},
                                    {8.75F, -8.22F, -0.01F, 1, 1},
                                    {8.75F, 8.22F, -0.01F, 1, 0},
                                    {-8.75F, 8.22F, -0.01F, 0, 0}};
    constexpr int c_indices[] = {0, 1, 2, 2, 3, 0};

    VertexBufferBuilder builder(static_cast<int>(std::size(c_corners)),
                                Scene::makeVertexFormat(true, 1));
    for (Corner const & corner : c_corners) {
        builder.AddPosition(corner.x, corner.y, corner.z);
        builder.Normal(0, 0, 1);
        builder.TexCoord2D(0, corner.u, corner.v);
    }
    StrongRef<SimpleMesh> const mesh(new (std::nothrow) SimpleMesh(
        Vrx::Devices::PrimitiveTriangles,
        builder.ToVertexBuffer(nullptr, Vrx::Devices::UsageStatic, Vrx::Devices::AccessReadWrite,
                               Vrx::Devices::StateComplete),
        Scene::BuildIndexBuffer(c_indices, static_cast<int>(std::size(c_indices)), true), nullptr));

    StrongRef<Vrx::Graphics::ARenderNode> rectangle;
    {
        NodeChange change;
        rectangle =
            StrongRef<Vrx::Graphics::ARenderNode>(change.createLODGeometryNode(nullptr, true));
        change.geometry(mesh.get(), 0xF); // for all levels of detail
        change.colorEffect(Color(1, 1, 1, 1), false, 0);
    }
    NodeChange change(scene(), false);
    change.addChild(rectangle.get());
    change.colorEffect(Color(0, 0.5F, 0, 1), false, 0);
}

} // namespace Vn
