// Setters of a document's settings: what one costs that changes nothing, beside one that does.

#include <benchmark/benchmark.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"

namespace Vn::CommonData {

namespace {

// Sets a direction again and again within one transaction; every time to another one if the
// argument says so.
void setSceneUp(benchmark::State & state) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<CommonDataAssetSettings> const settings =
        CommonDataAssetSettings::make(asset->segment(SegmentType::DesignSegment));
    double const step = state.range(0) ? 1 : 0;
    double z = 1;
    Transaction transaction(*asset, L"Set");
    for (auto _ : state) {
        settings->sceneUp(TgVector3d(0, 0, z));
        z += step;
    }
    transaction.commit();
}
BENCHMARK(setSceneUp)->ArgName("changes")->Arg(0)->Arg(1);

} // namespace

} // namespace Vn::CommonData
