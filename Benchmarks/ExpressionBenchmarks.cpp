// The engine: each stage alone and all together.  Times are for one line (or, of sums, one term)
// where the counter says so: "per_line", "per_term".

#include <benchmark/benchmark.h>
#include <chrono>

#include "Benchmarks/AllocationCounter.h"
#include "Benchmarks/Corpus.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokenizer.h"

namespace Vn::Benchmarks {

using Expressions::Interface;
using Expressions::Node;
using Expressions::ParseResult;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

constexpr char const * c_corpora[] = {"quantities", "arithmetic", "unit-arithmetic"};

Node * parse(std::wstring const & text) {
    static UnitContext const s_context;
    ParseResult result;
    return Interface::get()->parse(text, s_context, result);
}

void perLine(benchmark::State & state, std::size_t lines) {
    state.SetItemsProcessed(static_cast<std::int64_t>(lines) * state.iterations());
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(lines),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

// Times `stage` on trees that are made anew, outside of the time, for each pass.
template <class Stage>
void timeOnTrees(benchmark::State & state, Stage stage) {
    std::vector<std::wstring> const lines =
        wideCorpus(c_corpora[static_cast<std::size_t>(state.range(0))]);
    std::vector<Node *> trees;
    for (auto _ : state) {
        trees.clear();
        for (std::wstring const & line : lines)
            if (Node * const node = parse(line)) trees.push_back(node);
        auto const start = std::chrono::steady_clock::now();
        for (Node * const node : trees) stage(node);
        auto const end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
        for (Node * const node : trees) Interface::get()->destroy(node);
    }
    perLine(state, trees.size());
    state.SetLabel(c_corpora[state.range(0)]);
}

void tokenize(benchmark::State & state) {
    std::vector<std::wstring> const lines =
        wideCorpus(c_corpora[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state) {
        for (std::wstring const & line : lines) {
            Expressions::TokenList tokens;
            Expressions::TokenizerRegistry::get()->tokenize(line, tokens);
            benchmark::DoNotOptimize(tokens.last());
        }
    }
    perLine(state, lines.size());
    state.SetLabel(c_corpora[state.range(0)]);
}
BENCHMARK(tokenize)->DenseRange(0, 2);

// Tokenizing included, and the end of the tree.
void parseAlone(benchmark::State & state) {
    std::vector<std::wstring> const lines =
        wideCorpus(c_corpora[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state)
        for (std::wstring const & line : lines) Interface::get()->destroy(parse(line));
    perLine(state, lines.size());
    state.SetLabel(c_corpora[state.range(0)]);
}
BENCHMARK(parseAlone)->Name("parse")->DenseRange(0, 2);

void evaluate(benchmark::State & state) {
    timeOnTrees(state, [](Node * node) {
        double value = 0.0;
        Interface::get()->evaluate(node, value);
        benchmark::DoNotOptimize(value);
    });
}
// Parsing works values out on the way, so this is the reading of a value that is there.
BENCHMARK(evaluate)->DenseRange(0, 2)->UseManualTime()->Iterations(500);

void format(benchmark::State & state) {
    static UnitContext const s_context;
    std::vector<std::wstring> const lines =
        wideCorpus(c_corpora[static_cast<std::size_t>(state.range(0))]);
    std::vector<Node *> trees;
    for (std::wstring const & line : lines) {
        Node * const node = parse(line);
        double value = 0.0;
        if (node && Interface::get()->evaluate(node, value)) trees.push_back(node);
    }
    for (auto _ : state) {
        for (Node * const node : trees) {
            benchmark::DoNotOptimize(Interface::get()->formattedValue(
                node, Units::ValueAndUnit, UnitDisplaySettings::standard(), s_context));
        }
    }
    for (Node * const node : trees) Interface::get()->destroy(node);
    perLine(state, trees.size());
    state.SetLabel(c_corpora[state.range(0)]);
}
BENCHMARK(format)->DenseRange(0, 2);

void rebuild(benchmark::State & state) {
    timeOnTrees(state, [](Node * node) {
        benchmark::DoNotOptimize(Interface::get()->reconstructString(
            node, Units::ValueAndUnit, UnitDisplaySettings::standard()));
    });
}
BENCHMARK(rebuild)->DenseRange(0, 2)->UseManualTime()->Iterations(500);

// What the peers do: from text to value.
void parseAndEvaluate(benchmark::State & state) {
    std::vector<std::wstring> const lines =
        wideCorpus(c_corpora[static_cast<std::size_t>(state.range(0))]);
    std::size_t passes = 0;
    Allocations const before = allocations();
    for (auto _ : state) {
        for (std::wstring const & line : lines) {
            Node * const node = parse(line);
            double value = 0.0;
            if (node) Interface::get()->evaluate(node, value);
            benchmark::DoNotOptimize(value);
            Interface::get()->destroy(node);
        }
        ++passes;
    }
    Allocations const after = allocations();
    double const parsed = static_cast<double>(passes * lines.size());
    state.counters["allocations"] = static_cast<double>(after.count - before.count) / parsed;
    state.counters["bytes"] = static_cast<double>(after.bytes - before.bytes) / parsed;
    perLine(state, lines.size());
    state.SetLabel(c_corpora[state.range(0)]);
}
BENCHMARK(parseAndEvaluate)->DenseRange(0, 2);

void allTogether(benchmark::State & state) {
    UnitContext const context;
    std::vector<std::wstring> const lines =
        wideCorpus(c_corpora[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state) {
        for (std::wstring const & line : lines) {
            Expressions::Expression const expression(line, context);
            benchmark::DoNotOptimize(expression.value());
            benchmark::DoNotOptimize(expression.formatted());
            benchmark::DoNotOptimize(expression.rebuilt());
        }
    }
    perLine(state, lines.size());
    state.SetLabel(c_corpora[state.range(0)]);
}
BENCHMARK(allTogether)->DenseRange(0, 2);

void sumOf(benchmark::State & state, bool units) {
    std::size_t const terms = static_cast<std::size_t>(state.range(0));
    std::wstring const text = Text::fromUtf8(sum(terms, units));
    for (auto _ : state) {
        Node * const node = parse(text);
        double value = 0.0;
        Interface::get()->evaluate(node, value);
        benchmark::DoNotOptimize(value);
        Interface::get()->destroy(node);
    }
    state.counters["per_term"] = benchmark::Counter(static_cast<double>(terms),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

void sumOfNumbers(benchmark::State & state) { sumOf(state, false); }
BENCHMARK(sumOfNumbers)->RangeMultiplier(10)->Range(100, 1000000);

void sumOfQuantities(benchmark::State & state) { sumOf(state, true); }
BENCHMARK(sumOfQuantities)->RangeMultiplier(10)->Range(100, 1000000);

// Puts the host's part of the start in front of everything.
[[maybe_unused]] bool const s_started = [] {
    Initializer::runAll();
    return true;
}();

} // namespace

} // namespace Vn::Benchmarks
