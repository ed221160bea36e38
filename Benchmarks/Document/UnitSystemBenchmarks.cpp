// What the units of a document cost.

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Platform/DataModel/DocumentFile.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/MassProperties/MassProperties.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Tests/CommonData/Units/UnitSystemTesting.h"

namespace {

using namespace Vn;
using namespace Vn::Units;

// A file with one system of that many choices by id, all in "kilogram meter / second^2".
class File {
public:
    explicit File(unsigned choices) {
        SystemDocument const document;
        StrongRef<UnitSystemChoice> const first = addId(document.system(), "0", L"kg m / s^2");
        Status status = DocumentFile::saveAs(document.asset(), m_file.path());
        if (status.ok())
            for (Vn::Testing::Sql const sql(m_file.path());
                 std::string const & statement : manyChoices(choices))
                sql.run(statement);
    }

    StrongRef<Asset> load() const {
        StrongRef<Asset> asset;
        static_cast<void>(DocumentFile::load(m_file.path(), nullptr, asset));
        return asset;
    }

private:
    Managed::Testing::TemporaryFile m_file;
};

StrongRef<UnitSystem> systemOf(Asset & asset) {
    return UnitSystems::find(asset.segment(1U))->unitSystem(0);
}

// Per choice: what the first question to a loaded system costs.
void initialize(benchmark::State & state) {
    File const file(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        StrongRef<Asset> asset = file.load();
        StrongRef<UnitSystem> const system = systemOf(*asset);
        state.ResumeTiming();
        system->initialize();
        state.PauseTiming();
        asset.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(initialize)->RangeMultiplier(10)->Range(100, 100'000)->Unit(benchmark::kMillisecond);

// Its measure: the same text, read by itself.
void parseTheText(benchmark::State & state) {
    std::wstring const text = L"kilogram meter / second^2";
    for (auto _ : state) {
        ComplexUnit units;
        benchmark::DoNotOptimize(UnitSystemChoice::parse(text, units));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(parseTheText);

void findTheLastById(benchmark::State & state) {
    File const file(10'000);
    StrongRef<Asset> const asset = file.load();
    StrongRef<UnitSystem> const system = systemOf(*asset);
    system->initializeIfNeeded();
    std::string const id = "9999";
    for (auto _ : state) benchmark::DoNotOptimize(system->find(id).get());
}
BENCHMARK(findTheLastById)->Unit(benchmark::kMicrosecond);

// Its measure: a walk over as many strings behind pointers.
void walkStrings(benchmark::State & state) {
    std::vector<std::unique_ptr<std::string>> strings;
    for (int i = 0; i < 10'000; ++i)
        strings.push_back(std::make_unique<std::string>(std::to_string(i)));
    std::string const id = "9999";
    for (auto _ : state)
        for (auto const & each : strings)
            if (*each == id) benchmark::DoNotOptimize(each.get());
}
BENCHMARK(walkStrings)->Unit(benchmark::kMicrosecond);

void makeAContextById(benchmark::State & state) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    StrongRef<UnitSystemChoice> const choice = addId(document.system(), "ModelingLength", L"in");
    std::string const id = "ModelingLength";
    for (auto _ : state) {
        UnitContext const context(document.system(), id, UnitMeter::get(1.0));
        benchmark::DoNotOptimize(context.expectedUnits());
    }
}
BENCHMARK(makeAContextById);

// Its measure.
void parseAQuantity(benchmark::State & state) {
    UnitContext const context;
    std::wstring const text = L"2.5 in";
    for (auto _ : state) {
        Expressions::Expression const expression(text, context);
        benchmark::DoNotOptimize(static_cast<bool>(expression));
    }
}
BENCHMARK(parseAQuantity);

// A calculator that costs nothing.
class Constant final : public Managed::Persisted<Constant, Managed::ManagedEntity,
                                                 CommonData::IMassPropertyCalculator> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Benchmarks::Constant",
                                                     "1A5B0C3E-0001-4000-8000-0000000000C1", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Constant> make(Segment * segment) { return create(segment); }

    void calculate(CommonData::MassProperties const *, double * volume, double * area,
                   double * mass, double * density, CommonData::IComponentTraversalContext *,
                   bool) override {
        *volume = 6000;
        *area = 2200;
        *mass = 47.1;
        *density = 0.00785;
    }
    PhysicalMaterial const * commonPhysicalMaterial(CommonData::IComponentTraversalContext *,
                                                    bool) override {
        return &m_material;
    }
    bool isMeasurable() const override { return true; }

    CommonData::MassProperties m_record;

private:
    friend class Managed::PersistedAccess;
    explicit Constant(Segment * segment) : Persisted(segment) {
        m_record.installOwner(this);
        initializeMemberSetIfNeeded();
    }
    Constant(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}

    PhysicalMaterial const m_material{L"Steel", 0.00785};
};

class ConstantMetaType final : public Managed::PersistedMetaType<Constant> {};
ConstantMetaType s_constant;
EntityMetaType * Constant::s_metaType() { return &s_constant; }

void showAllMassProperties(benchmark::State & state) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    StrongRef<UnitSystemChoice> const length = addId(document.system(), "ModelingLength", L"in");
    StrongRef<UnitSystemChoice> const mass = addId(document.system(), "ModelingMass", L"lbmass");
    StrongRef<Constant> const constant = Constant::make(document.segment());
    for (auto _ : state) {
        std::map<std::wstring, std::wstring> all;
        constant->m_record.getAllMassProperties(all, document.system(), nullptr, false);
        benchmark::DoNotOptimize(all.size());
    }
}
BENCHMARK(showAllMassProperties);

// Its measure: the four texts alone.
void showFourValues(benchmark::State & state) {
    ComplexUnit const volume = complexUnit({L"in", L"in", L"in"});
    ComplexUnit const area = complexUnit({L"in", L"in"});
    ComplexUnit const density = complexUnit({L"lbmass"}, {L"in", L"in", L"in"});
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(volume.reconstructString(6000, ValueAndUnit, settings));
        benchmark::DoNotOptimize(area.reconstructString(2200, ValueAndUnit, settings));
        benchmark::DoNotOptimize(
            UnitPoundMass::get()->reconstructString(47.1, ValueAndUnit, settings));
        benchmark::DoNotOptimize(density.reconstructString(0.00785, ValueAndUnit, settings));
    }
}
BENCHMARK(showFourValues);

} // namespace
