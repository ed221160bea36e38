// Models as glTF: what a part costs in files of few and of many, all different or all equal.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Platform/Graphics/IndexBuffer.h"
#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Picture/Gltf.h"

namespace {

using Vn::StrongRef;
using Vn::Picture::GltfModel;
using Vrx::Graphics::GroupNode;
using Vrx::Graphics::LODGeometryNode;

constexpr std::size_t c_few = 1'000;
constexpr std::size_t c_many = 100'000;

// A box of 24 vertices with normals.
StrongRef<Vrx::Devices::SimpleMesh> box(float height) {
    using namespace Vrx::Devices;
    std::vector<float> numbers;
    std::vector<std::uint32_t> indices;
    for (std::size_t side = 0; side < 6; ++side) {
        std::size_t const axis = side % 3;
        for (std::size_t corner = 0; corner < 4; ++corner) {
            float position[3];
            position[axis] = side < 3 ? 0.0F : 1.0F;
            position[(axis + 1) % 3] = corner & 1 ? 1.0F : 0.0F;
            position[(axis + 2) % 3] = corner & 2 ? 1.0F : 0.0F;
            position[2] *= height;
            float normal[3] = {};
            normal[axis] = side < 3 ? -1.0F : 1.0F;
            numbers.insert(numbers.end(), position, position + 3);
            numbers.insert(numbers.end(), normal, normal + 3);
        }
        for (std::uint32_t const corner : {0U, 1U, 2U, 2U, 1U, 3U})
            indices.push_back(static_cast<std::uint32_t>(4 * side) + corner);
    }
    return StrongRef<SimpleMesh>(new SimpleMesh(
        PrimitiveTriangles,
        StrongRef<VertexBuffer>(new VertexBuffer(VertexFormat(true, 0), numbers, UsageStatic,
                                                 AccessReadWrite, StateComplete)),
        StrongRef<IndexBuffer>(new IndexBuffer(indices, true)), nullptr));
}

StrongRef<GroupNode> graphOf(std::size_t parts, bool areEqual) {
    StrongRef<GroupNode> const top = GroupNode::make();
    auto const shared = box(1);
    for (std::size_t i = 0; i < parts; ++i) {
        StrongRef<GroupNode> const group = GroupNode::make();
        group->transform(std::make_unique<TgMatrix3d const>(
            TgMatrix3d::translation({0.1 * static_cast<double>(i), 1.5, 2})));
        StrongRef<LODGeometryNode> const node = LODGeometryNode::make();
        auto const mesh = areEqual ? shared : box(1 + static_cast<float>(i) / 1024);
        node->geometry(mesh.get(), Vrx::Graphics::LevelAll);
        group->addChild(node.get());
        top->addChild(group.get());
    }
    return top;
}

std::size_t exported(GroupNode const * top) {
    GltfModel model;
    if (!Vn::Picture::makeGltf(top, {}, model)) return 0;
    return model.bytes.size();
}

template <bool Equal>
void model(benchmark::State & state) {
    auto const parts = static_cast<std::size_t>(state.range(0));
    StrongRef<GroupNode> const top = graphOf(parts, Equal);
    std::size_t bytes = 0;
    for (auto _ : state) benchmark::DoNotOptimize(bytes = exported(top.get()));
    if (bytes == 0) state.SkipWithError("no model");
    state.counters["per part"] = benchmark::Counter(static_cast<double>(parts),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
    state.counters["bytes per part"] = static_cast<double>(bytes) / static_cast<double>(parts);
}

// How many times as much a different part costs among many as among few: both in turn, and the
// median of what came out.  It should be below 1.25.
void manyToFew(benchmark::State & state) {
    StrongRef<GroupNode> const few = graphOf(c_few, false);
    StrongRef<GroupNode> const many = graphOf(c_many, false);
    auto const seconds = [](GroupNode const * top, std::size_t times) {
        auto const begin = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < times; ++i) benchmark::DoNotOptimize(exported(top));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    std::vector<double> ratios;
    for (auto _ : state) {
        double const manyTimesFew = seconds(few.get(), c_many / c_few);
        ratios.push_back(seconds(many.get(), 1) / manyTimesFew);
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["ratio"] = ratios[ratios.size() / 2];
}

BENCHMARK(model<false>)->RangeMultiplier(10)->Range(c_few, c_many)->Unit(benchmark::kMillisecond);
BENCHMARK(model<true>)->RangeMultiplier(10)->Range(c_few, c_many)->Unit(benchmark::kMillisecond);
BENCHMARK(manyToFew)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
