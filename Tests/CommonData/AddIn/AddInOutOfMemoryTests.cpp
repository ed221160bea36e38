// Equipping a document and changing its settings while allocations fail: what there was, or what
// there was to be, and nothing between.

#include <functional>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/Asset.h"
#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Tests/DataModel/FailingAllocations.h"
#include "Tests/Support/Exactly.h"

namespace Vn::Testing {

namespace {

// Runs `work` with the n-th allocation failing, for each n until none fails.  `check` is told
// whether memory ran out.
void forEachFailure(std::function<void()> const & work,
                    std::function<void(bool failed)> const & check) {
    for (unsigned long n = 1;; ++n) {
        bool failed = false;
        FailingAllocations::failAt(n, false);
        try {
            work();
        } catch (std::bad_alloc const &) {
            failed = true;
        }
        bool const isLast = !FailingAllocations::hasFailed();
        FailingAllocations::heal();
        SCOPED_TRACE("allocation " + std::to_string(n));
        check(failed);
        if (isLast) return;
        ASSERT_LT(n, 100000U);
    }
}

TEST(AddInOutOfMemoryTests, AGraphIsTheOneBeforeOrACompleteOne) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    auto * const adapter = CommonDataAssetAdapter::defaultInitializeLoadedAsset(asset.get());
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(asset.get());
    unsigned graphs = 0;
    StrongRef<Vrx::Graphics::GroupNode> before(adapter->scene());
    forEachFailure([&] { CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(asset.get()); },
                   [&](bool failed) {
                       if (failed) {
                           EXPECT_EQ(adapter->scene(), before.get());
                       } else {
                           EXPECT_NE(adapter->scene(), before.get());
                           ++graphs;
                       }
                       ASSERT_NE(adapter->scene(), nullptr);
                       EXPECT_EQ(adapter->scene()->children(), 1U);
                       EXPECT_NE(adapter->scene()->effect(), nullptr);
                       before = StrongRef<Vrx::Graphics::GroupNode>(adapter->scene());
                   });
    EXPECT_GE(graphs, 1U);
}

TEST(AddInOutOfMemoryTests, ADocumentKeepsItsAdapterOrHasANewOne) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    AssetAdapter * before = CommonDataAssetAdapter::defaultInitializeLoadedAsset(asset.get());
    forEachFailure([&] { CommonDataAssetAdapter::defaultInitializeLoadedAsset(asset.get()); },
                   [&](bool) {
                       ASSERT_NE(asset->adapter(), nullptr);
                       EXPECT_EQ(asset->segments(), 2U);
                       before = asset->adapter();
                   });
}

TEST(AddInOutOfMemoryTests, ASettingIsChangedAsOneStepOrNotAtAll) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<CommonData::CommonDataAssetSettings> const settings =
        CommonData::CommonDataAssetSettings::make(asset->segment(SegmentType::DesignSegment));
    TgVector3d const before = settings->sceneUp();
    forEachFailure(
        [&] {
            Transaction transaction(*asset, L"Step");
            settings->sceneUp({0, 1, 0});
            settings->fitHome(false);
            transaction.commit();
        },
        [&](bool failed) {
            EXPECT_EQ(settings->fitHome(), failed);
            EXPECT_EQ(exactly(settings->sceneUp()), exactly(failed ? before : TgVector3d(0, 1, 0)));
            EXPECT_EQ(asset->history().undoSteps(), failed ? 0U : 1U);
            if (failed) return;
            ASSERT_TRUE(asset->history().undo());
            asset->history().clear();
        });
}

TEST(AddInOutOfMemoryTests, SettingsAreMadeWholeOrNotAtAll) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const design = asset->segment(SegmentType::DesignSegment);
    forEachFailure(
        [&] {
            Transaction transaction(*asset, L"Make");
            StrongRef<Entity> const made = CommonData::CommonDataAssetSettings::make(design);
            transaction.commit();
        },
        [&](bool failed) {
            StrongRef<Entity> const root = design->rootEntity("AssetSettings");
            EXPECT_EQ(static_cast<bool>(root), !failed);
            if (failed) return;
            auto const * const settings = query<CommonData::CommonDataAssetSettings>(root.get());
            ASSERT_NE(settings, nullptr);
            EXPECT_EQ(settings->memberSet()->members(), 26U);
            EXPECT_EQ(settings->currHomeProjection(), 2U);
            ASSERT_TRUE(asset->history().undo());
            asset->history().clear();
        });
}

} // namespace

} // namespace Vn::Testing
