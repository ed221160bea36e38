// The render graph beside a vector of counted references: what an element costs to build and to
// let go.

#include <cstddef>
#include <vector>

#include <benchmark/benchmark.h>

#include "Platform/Scene/NodeChange.h"

namespace {

using Vn::StrongRef;
using Vn::Scene::NodeChange;
using Vrx::Graphics::GroupNode;

// As large as a group, so that only the way it is kept differs.
class Element : public Vn::RefCounted {
    [[maybe_unused]] char m_rest[sizeof(GroupNode) - sizeof(Vn::RefCounted)];
};

void perElement(benchmark::State & state) {
    state.counters["per element"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void vectorOfReferences(benchmark::State & state) {
    for (auto _ : state) {
        std::vector<StrongRef<Element>> elements;
        for (std::ptrdiff_t i = 0; i < state.range(0); ++i) elements.emplace_back(new Element);
        benchmark::DoNotOptimize(elements.data());
    }
    perElement(state);
}

// Children of one group, and groups each within the one before.
template <bool Deep>
void graphAtOnce(benchmark::State & state) {
    for (auto _ : state) {
        StrongRef<GroupNode> const top = GroupNode::make();
        GroupNode * group = top.get();
        for (std::ptrdiff_t i = 0; i < state.range(0); ++i) {
            StrongRef<GroupNode> const node = GroupNode::make();
            group->addChild(node.get());
            if (Deep) group = node.get();
        }
    }
    perElement(state);
}

// In one bracket on the group.
void graphInOneBracket(benchmark::State & state) {
    for (auto _ : state) {
        StrongRef<GroupNode> const top = GroupNode::make();
        NodeChange change(top.get(), false);
        for (std::ptrdiff_t i = 0; i < state.range(0); ++i)
            change.addChild(StrongRef<GroupNode>(GroupNode::make()).get());
    }
    perElement(state);
}

// In brackets of its own for each element, two of them: alone, and all within one.
template <bool Deep>
void addInBrackets(GroupNode * group, std::ptrdiff_t count) {
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        NodeChange change;
        GroupNode * const node = change.createGroupNode(nullptr, 1, true, true);
        NodeChange(group, false).addChild(node);
        if (Deep) group = node;
    }
}

template <bool Deep>
void graphInABracketEach(benchmark::State & state) {
    for (auto _ : state) {
        StrongRef<GroupNode> const top = GroupNode::make();
        addInBrackets<Deep>(top.get(), state.range(0));
    }
    perElement(state);
}

template <bool Deep>
void graphInNestedBrackets(benchmark::State & state) {
    for (auto _ : state) {
        StrongRef<GroupNode> const top = GroupNode::make();
        NodeChange const outermost;
        addInBrackets<Deep>(top.get(), state.range(0));
    }
    perElement(state);
}

// A graph whose nodes are taken out one by one, from the front.
void graphEmptied(benchmark::State & state) {
    for (auto _ : state) {
        StrongRef<GroupNode> const top = GroupNode::make();
        for (std::ptrdiff_t i = 0; i < state.range(0); ++i)
            top->addChild(StrongRef<GroupNode>(GroupNode::make()).get());
        while (top->firstChild()) top->removeChild(top->firstChild());
    }
    perElement(state);
}

void sizes(benchmark::internal::Benchmark * benchmark) {
    benchmark->RangeMultiplier(10)->Range(1'000, 1'000'000);
}

BENCHMARK(vectorOfReferences)->Apply(sizes);
BENCHMARK(graphAtOnce<false>)->Apply(sizes);
BENCHMARK(graphAtOnce<true>)->Apply(sizes);
BENCHMARK(graphEmptied)->Apply(sizes);
BENCHMARK(graphInOneBracket)->Apply(sizes);
BENCHMARK(graphInABracketEach<false>)->Apply(sizes);
BENCHMARK(graphInABracketEach<true>)->Apply(sizes);
BENCHMARK(graphInNestedBrackets<false>)->Apply(sizes);
BENCHMARK(graphInNestedBrackets<true>)->Apply(sizes);

} // namespace
