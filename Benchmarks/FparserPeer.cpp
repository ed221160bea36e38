// fparser on the same arithmetic: from text to value.

#include <benchmark/benchmark.h>
#include <fparser.hh>

#include "Benchmarks/Corpus.h"

namespace Vn::Benchmarks {

namespace {

void arithmetic(benchmark::State & state) {
    std::vector<std::string> const lines = corpus("arithmetic.fparser");
    FunctionParser parser;
    for (auto _ : state) {
        for (std::string const & line : lines) {
            parser.Parse(line, "");
            benchmark::DoNotOptimize(parser.Eval(nullptr));
        }
    }
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(lines.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}
BENCHMARK(arithmetic)->Name("fparser/arithmetic");

} // namespace

} // namespace Vn::Benchmarks
