// libqalculate on the same lines: from text to value, and a quantity to text.

#include <benchmark/benchmark.h>

#include "Benchmarks/Corpus.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#include <libqalculate/qalculate.h>
#pragma GCC diagnostic pop

namespace Vn::Benchmarks {

namespace {

Calculator & calculator() {
    static Calculator * const s_calculator = [] {
        auto * const made = new Calculator;
        made->loadGlobalDefinitions();
        return made;
    }();
    return *s_calculator;
}

void evaluate(benchmark::State & state, std::vector<std::string> const & lines) {
    Calculator & peer = calculator();
    EvaluationOptions const options;
    for (auto _ : state) {
        for (std::string const & line : lines) {
            MathStructure result = peer.calculate(line, options);
            benchmark::DoNotOptimize(result);
        }
    }
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(lines.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

void quantities(benchmark::State & state) { evaluate(state, corpus("quantities.qalculate")); }
BENCHMARK(quantities)->Name("libqalculate/quantities");

void arithmetic(benchmark::State & state) { evaluate(state, corpus("arithmetic.qalculate")); }
BENCHMARK(arithmetic)->Name("libqalculate/arithmetic");

void unitArithmetic(benchmark::State & state) {
    evaluate(state, corpus("unit-arithmetic.qalculate"));
}
BENCHMARK(unitArithmetic)->Name("libqalculate/unit-arithmetic");

void sumOfQuantities(benchmark::State & state) {
    evaluate(state, {sum(static_cast<std::size_t>(state.range(0)), true)});
}
BENCHMARK(sumOfQuantities)
    ->Name("libqalculate/sumOfQuantities")
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);

void format(benchmark::State & state) {
    Calculator & peer = calculator();
    std::vector<MathStructure> values;
    for (std::string const & line : corpus("quantities.qalculate"))
        values.push_back(peer.calculate(line, EvaluationOptions()));
    PrintOptions const options;
    for (auto _ : state) {
        for (MathStructure & value : values) {
            MathStructure shown(value);
            shown.format(options);
            benchmark::DoNotOptimize(shown.print(options));
        }
    }
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(values.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}
BENCHMARK(format)->Name("libqalculate/format");

} // namespace

} // namespace Vn::Benchmarks
