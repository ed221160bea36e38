// Quantities beside bare numbers that do the same work.

#include <benchmark/benchmark.h>
#include <cstddef>
#include <vector>

#include "Server/CommonData/Units/Quantity.h"

namespace Vn::Benchmarks {

namespace {

using Units::Quantity;

constexpr std::size_t c_values = 1000;

std::vector<double> numbers() {
    std::vector<double> values;
    for (std::size_t i = 0; i < c_values; ++i) values.push_back(1.0 + static_cast<double>(i));
    return values;
}

std::vector<Quantity> quantities(char const * unit) {
    Quantity const one(1, unit);
    std::vector<Quantity> values;
    for (double const value : numbers()) values.push_back(one * value);
    return values;
}

void perValue(benchmark::State & state) {
    state.counters["per_value"] = benchmark::Counter(static_cast<double>(c_values),
                                                     benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

void sumOfNumbers(benchmark::State & state) {
    std::vector<double> const values = numbers();
    for (auto _ : state) {
        double sum = 0.0;
        for (double const value : values) benchmark::DoNotOptimize(sum += value);
    }
    perValue(state);
}
BENCHMARK(sumOfNumbers);

// All in the unit of the sum, and all in another.
void sumOfQuantities(benchmark::State & state) {
    std::vector<Quantity> const values = quantities(state.range(0) ? "in" : "m");
    for (auto _ : state) {
        Quantity sum(0, "m");
        for (Quantity const & value : values) benchmark::DoNotOptimize(sum += value);
    }
    perValue(state);
}
BENCHMARK(sumOfQuantities)->ArgName("otherUnit")->DenseRange(0, 1);

void productsOfNumbers(benchmark::State & state) {
    std::vector<double> const values = numbers();
    for (auto _ : state)
        for (double const value : values) benchmark::DoNotOptimize(value * 2.5);
    perValue(state);
}
BENCHMARK(productsOfNumbers);

void quantitiesByNumbers(benchmark::State & state) {
    std::vector<Quantity> const values = quantities("m");
    for (auto _ : state)
        for (Quantity const & value : values) benchmark::DoNotOptimize(value * 2.5);
    perValue(state);
}
BENCHMARK(quantitiesByNumbers);

// Each makes a unit.
void productsOfQuantities(benchmark::State & state) {
    std::vector<Quantity> const values = quantities("m");
    Quantity const speed(2.5, "km / hr");
    for (auto _ : state)
        for (Quantity const & value : values) benchmark::DoNotOptimize(value / speed);
    perValue(state);
}
BENCHMARK(productsOfQuantities);

void comparisonsOfNumbers(benchmark::State & state) {
    std::vector<double> const values = numbers();
    for (auto _ : state)
        for (double const value : values) benchmark::DoNotOptimize(value < 500.0);
    perValue(state);
}
BENCHMARK(comparisonsOfNumbers);

void comparisonsOfQuantities(benchmark::State & state) {
    std::vector<Quantity> const values = quantities("m");
    Quantity const limit(500, state.range(0) ? "yd" : "m");
    for (auto _ : state)
        for (Quantity const & value : values) benchmark::DoNotOptimize(value < limit);
    perValue(state);
}
BENCHMARK(comparisonsOfQuantities)->ArgName("otherUnit")->DenseRange(0, 1);

} // namespace

} // namespace Vn::Benchmarks
