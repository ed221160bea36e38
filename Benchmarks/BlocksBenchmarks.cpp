// The sample beside the server: what a part costs to make, with its client object and its nodes,
// beside entities that have none; and what a change of one part costs among many.

#include <cstddef>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Segment.h"
#include "Samples/Blocks/Modelling.h"
#include "Samples/Blocks/Workbench.h"
#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"

namespace {

using namespace Vn;
using namespace Vn::Blocks;

StrongRef<Asset> makeDocument(bool isShown) {
    StrongRef<Asset> asset = Asset::make(nullptr);
    if (isShown) {
        CommonDataAssetAdapter::defaultInitializeLoadedAsset(asset.get());
        CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(asset.get());
    }
    Transaction transaction(*asset, L"Workbench");
    Workbench::make(*asset);
    transaction.commit();
    return asset;
}

void perEntity(benchmark::State & state) {
    state.counters["each"] = benchmark::Counter(static_cast<double>(state.range(0)),
                                                benchmark::Counter::kIsIterationInvariantRate |
                                                    benchmark::Counter::kInvert);
}

// Makes so many of something in one transaction in an assembly; the document comes and goes
// outside of what is measured.
template <class Make>
void make(benchmark::State & state, bool isShown, Make && makeOne) {
    for (auto _ : state) {
        state.PauseTiming();
        StrongRef<Asset> asset = makeDocument(isShown);
        StrongRef<Assembly> assembly;
        static_cast<void>(assemble(*asset, L"a", {}, assembly));
        PassiveRef<Entity> const group(assembly);
        state.ResumeTiming();
        {
            Transaction transaction(*asset, L"Make");
            for (std::ptrdiff_t i = 0; i < state.range(0); ++i) makeOne(*asset, group, *assembly);
            transaction.commit();
        }
        state.PauseTiming();
        assembly.reset();
        asset.reset();
        state.ResumeTiming();
    }
    perEntity(state);
}

void entities(benchmark::State & state) {
    make(state, false, [](Asset &, PassiveRef<Entity> const & group, Assembly &) {
        StrongRef<CommonData::CommonBaseGroupEntity> const entity =
            CommonData::CommonBaseGroupEntity::make(group);
    });
}

// The client object has no common data here, and isn't kept.
void entitiesWithClients(benchmark::State & state) {
    make(state, false, [](Asset &, PassiveRef<Entity> const & group, Assembly &) {
        StrongRef<CommonData::CommonBaseGroupEntity> const entity =
            CommonData::CommonBaseGroupEntity::make(group);
        StrongRef<Input> const input =
            Input::make(group->segment(), {L"1 cm", L"2 cm", L"3 cm"}, {});
        input->commonData(query<CommonData::ICommonData>(entity.get()));
        entity->commonDataClientObject(query<CommonData::ICommonDataClientObject>(input.get()));
    });
}

template <bool Shown>
void blocks(benchmark::State & state) {
    Part::Plan const plan{{1, 2, 3}, {L"1 cm", L"2 cm", L"3 cm"}, {}, {}};
    make(state, Shown, [&](Asset &, PassiveRef<Entity> const & group, Assembly &) {
        Part::make(EShape::Block, group, plan);
    });
}

void blocksFromTexts(benchmark::State & state) {
    PartTexts const texts{{L"1", L"2", L"3"}, {}};
    make(state, true, [&](Asset & asset, PassiveRef<Entity> const &, Assembly & assembly) {
        StrongRef<Part> part;
        static_cast<void>(makePart(asset, EShape::Block, texts, &assembly, part, nullptr));
    });
}

// One size of one block among so many, a step each.
void changeOne(benchmark::State & state) {
    StrongRef<Asset> const asset = makeDocument(true);
    asset->history().stepLimit(100);
    StrongRef<Part> part;
    {
        Transaction transaction(*asset, L"Make");
        Part::Plan const plan{{1, 2, 3}, {L"1 cm", L"2 cm", L"3 cm"}, {}, {}};
        PassiveRef<Entity> const bench(Workbench::find(*asset));
        for (std::ptrdiff_t i = 0; i < state.range(0); ++i)
            part = Part::make(EShape::Block, bench, plan);
        transaction.commit();
    }
    bool isOther = false;
    for (auto _ : state) {
        isOther = !isOther;
        static_cast<void>(setSize(*part, "width", isOther ? L"4" : L"5", nullptr));
    }
}

BENCHMARK(entities)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK(entitiesWithClients)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(blocks<false>)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK(blocks<true>)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK(blocksFromTexts)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK(changeOne)->Arg(100)->Arg(100000);

} // namespace
