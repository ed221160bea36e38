// muParser on the same arithmetic: from text to value.

#include <benchmark/benchmark.h>
#include <muParser.h>

#include "Benchmarks/Corpus.h"

namespace Vn::Benchmarks {

namespace {

void arithmetic(benchmark::State & state) {
    std::vector<std::string> const lines = corpus("arithmetic.muparser");
    mu::Parser parser;
    for (auto _ : state) {
        for (std::string const & line : lines) {
            parser.SetExpr(line);
            benchmark::DoNotOptimize(parser.Eval());
        }
    }
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(lines.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}
BENCHMARK(arithmetic)->Name("muparser/arithmetic");

} // namespace

} // namespace Vn::Benchmarks
