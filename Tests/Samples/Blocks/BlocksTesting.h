// What the tests of the sample share.

#ifndef VN_TESTS_SAMPLES_BLOCKS_BLOCKSTESTING_H
#define VN_TESTS_SAMPLES_BLOCKS_BLOCKSTESTING_H

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/NodeWalk.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Scene/SceneAssetAdapter.h"
#include "Samples/Blocks/Modelling.h"
#include "Samples/Blocks/Workbench.h"
#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Blocks::Testing {

// Shows a document, as a host has it done once the document was made or opened.
inline void equip(Asset & asset) {
    CommonDataAssetAdapter::defaultInitializeLoadedAsset(&asset);
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(&asset);
}

inline Vrx::Graphics::GroupNode * sceneOf(Asset const & asset) {
    return query<Scene::SceneAssetAdapter>(asset.adapter())->scene();
}

// The graph of a document as lines: each node with its place, its colour and its mesh.
inline std::string graphOf(Asset const & asset) {
    std::ostringstream text;
    text.precision(17);
    for (Vrx::Graphics::NodeWalk walk(sceneOf(asset)); walk; walk.next()) {
        text << std::string(2 * walk.depth(), ' ');
        if (auto const * const group = walk.node()->asGroup()) {
            text << "group";
            if (TgMatrix3d const * const at = group->transform())
                text << " at " << at->entry(0, 3) << ' ' << at->entry(1, 3) << ' '
                     << at->entry(2, 3);
        } else {
            auto const * const mesh = walk.node()->asGeometry()->mesh();
            text << "mesh";
            if (mesh && mesh->bounds())
                text << ' ' << mesh->indexBuffer()->indices() << " to " << mesh->bounds()->high.x
                     << ' ' << mesh->bounds()->high.y << ' ' << mesh->bounds()->high.z;
        }
        if (auto const * const effect = walk.node()->effect())
            text << " in " << effect->color.red << ' ' << effect->color.green << ' '
                 << effect->color.blue;
        text << '\n';
    }
    return text.str();
}

// A document that is shown, and in which lengths are in a unit.
class Document {
public:
    explicit Document(std::wstring const & unit = L"cm") {
        Segment * const design = asset->segment(SegmentType::DesignSegment);
        auto const settings = StrongRef<CommonData::CommonDataAssetSettings>(
            CommonData::CommonDataAssetSettings::make(design));
        systems = Units::UnitSystems::make(design);
        settings->activateUnitSystem(addSystem("first", unit));
        equip(*asset);
        asset->history().clear();
    }

    StrongRef<Units::UnitSystem> addSystem(std::string const & id, std::wstring const & unit) {
        StrongRef<Units::UnitSystem> system =
            Units::UnitSystem::make(systems, std::wstring(L"System"), id);
        StrongRef<Units::UnitSystemChoice> const choice = Units::UnitSystemChoiceByUnit::make(
            system, unit, Units::UnitSystemChoiceById::modelingLengthName());
        return system;
    }
    void activate(StrongRef<Units::UnitSystem> const & system) {
        StrongRef<Entity> const root =
            asset->segment(SegmentType::DesignSegment)->rootEntity(AssetSettings::segmentRootId());
        query<CommonData::CommonDataAssetSettings>(root.get())->activateUnitSystem(system);
    }

    // A part of these sizes; a refusal fails the test.
    StrongRef<Part> make(EShape kind, std::vector<std::wstring> sizes,
                         std::vector<std::wstring> place = {}, Assembly * assembly = nullptr) {
        StrongRef<Part> part;
        Fault fault;
        Status const status =
            makePart(*asset, kind, {std::move(sizes), std::move(place)}, assembly, part, &fault);
        EXPECT_TRUE(status) << status.toString();
        return part;
    }
    StrongRef<Part> makeBlock(std::wstring const & edge) {
        return make(EShape::Block, {edge, edge, edge});
    }
    StrongRef<Assembly> makeAssembly(std::vector<StrongRef<Item>> const & items = {}) {
        StrongRef<Assembly> assembly;
        Status const status = assemble(*asset, L"Assembly", items, assembly);
        EXPECT_TRUE(status) << status.toString();
        return assembly;
    }
    ChangeHistory & history() { return asset->history(); }
    std::string graph() const { return graphOf(*asset); }

    // The graph of the document saved and opened anew.
    std::string graphOpenedAnew() {
        Vn::Testing::TemporaryFile const file;
        Status status = DocumentFile::saveAs(*asset, file.path());
        EXPECT_TRUE(status) << status.toString();
        StrongRef<Asset> opened;
        status = DocumentFile::load(file.path(), nullptr, opened);
        EXPECT_TRUE(status) << status.toString();
        if (!opened) return {};
        equip(*opened);
        return graphOf(*opened);
    }

    StrongRef<Asset> asset = Asset::make(nullptr);
    StrongRef<Units::UnitSystems> systems;
};

} // namespace Vn::Blocks::Testing

#endif
