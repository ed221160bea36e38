// Pictures beside the bare calls of OpenGL that it takes to draw the same triangles in the same
// library: from 1,000,000 triangles in so many meshes to pixels.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Picture/DeviceInternal.h"
#include "Platform/Picture/EdgesInternal.h"
#include "Platform/Picture/GlInternal.h"
#include "Platform/Picture/Picture.h"

namespace {

using namespace Vn;
using namespace Vn::Picture;
using Vrx::Devices::SimpleMesh;

constexpr unsigned c_triangles = 1000000;
constexpr unsigned c_width = 1024;
constexpr unsigned c_height = 768;
constexpr int c_samples = 4;

// A wavy piece of cloth at a place, with so many triangles.
struct Cloth {
    Cloth(unsigned triangles, float x, float y, float size) {
        auto const side = static_cast<unsigned>(std::sqrt(triangles / 2.0));
        for (unsigned i = 0; i <= side; ++i)
            for (unsigned j = 0; j <= side; ++j) {
                float const u = static_cast<float>(i) / static_cast<float>(side);
                float const v = static_cast<float>(j) / static_cast<float>(side);
                numbers.insert(numbers.end(), {x + u * size, y + v * size,
                                               0.05F * size * std::sin(20 * u) * std::cos(20 * v)});
            }
        for (unsigned i = 0; i < side; ++i)
            for (unsigned j = 0; j < side; ++j) {
                std::uint32_t const corner = i * (side + 1) + j;
                indices.insert(indices.end(), {corner, corner + side + 1, corner + 1, corner + 1,
                                               corner + side + 1, corner + side + 2});
            }
    }
    StrongRef<SimpleMesh> mesh() const {
        using namespace Vrx::Devices;
        return StrongRef<SimpleMesh>(new SimpleMesh(
            PrimitiveTriangles,
            StrongRef<VertexBuffer>(new VertexBuffer(VertexFormat(), numbers, UsageStatic,
                                                     AccessReadWrite, StateComplete)),
            StrongRef<IndexBuffer>(new IndexBuffer(indices, false)), nullptr));
    }

    std::vector<float> numbers;
    std::vector<std::uint32_t> indices;
};

std::vector<Cloth> cloths(unsigned count) {
    std::vector<Cloth> all;
    auto const side = static_cast<unsigned>(std::ceil(std::sqrt(count)));
    float const size = 1.0F / static_cast<float>(side);
    for (unsigned i = 0; i < count; ++i)
        all.emplace_back(c_triangles / count, static_cast<float>(i / side) * size,
                         static_cast<float>(i % side) * size, size);
    return all;
}

void check(Status const & status) {
    if (status) return;
    std::cerr << status.toString() << '\n';
    std::exit(1);
}

void perTriangle(benchmark::State & state) {
    state.counters["per triangle"] = benchmark::Counter(
        c_triangles, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// What is drawn with, whoever draws.
struct Context {
    Context() {
        check(Device::open(device));
        check(gl.load(*device));
    }
    std::unique_ptr<Device> device;
    Gl gl;
};
Context & context() {
    static Context * const s_context = new Context;
    return *s_context;
}

constexpr char c_vertexShader[] = R"(#version 330 core
layout(location = 0) in vec3 position;
out vec3 eye;
void main() {
    eye = position - vec3(0.5, 0.5, 2.0);
    gl_Position = vec4(eye.xy * vec2(1.5, 1.9), eye.z / -4.0, 1.0);
}
)";
constexpr char c_fragmentShader[] = R"(#version 330 core
in vec3 eye;
out vec4 result;
void main() {
    vec3 normal = cross(dFdx(eye), dFdy(eye));
    result = vec4(vec3(0.2, 0.3, 0.8) * (0.25 + 0.75 * abs(normal.z) / length(normal)), 1.0);
}
)";

void bareCalls(benchmark::State & state) {
    std::vector<Cloth> const all = cloths(static_cast<unsigned>(state.range(0)));
    check(context().device->makeCurrent());
    Gl const & gl = context().gl;
    for (auto _ : state) {
        GLuint const program = gl.CreateProgram();
        for (auto const & [kind, source] : {std::pair(GL_VERTEX_SHADER, c_vertexShader),
                                            std::pair(GL_FRAGMENT_SHADER, c_fragmentShader)}) {
            GLuint const shader = gl.CreateShader(static_cast<GLenum>(kind));
            char const * const text = source;
            gl.ShaderSource(shader, 1, &text, nullptr);
            gl.CompileShader(shader);
            gl.AttachShader(program, shader);
            gl.DeleteShader(shader);
        }
        gl.LinkProgram(program);
        gl.UseProgram(program);
        std::array<GLuint, 2> frames{};
        std::array<GLuint, 3> stores{};
        gl.GenFramebuffers(2, frames.data());
        gl.GenRenderbuffers(3, stores.data());
        auto const attach = [&](std::size_t frame, std::size_t store, GLenum place, GLenum format,
                                int samples) {
            gl.BindFramebuffer(GL_FRAMEBUFFER, frames[frame]);
            gl.BindRenderbuffer(GL_RENDERBUFFER, stores[store]);
            gl.RenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, c_width, c_height);
            gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, stores[store]);
        };
        attach(1, 2, GL_COLOR_ATTACHMENT0, GL_SRGB8_ALPHA8, 0);
        attach(0, 0, GL_COLOR_ATTACHMENT0, GL_SRGB8_ALPHA8, c_samples);
        attach(0, 1, GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT32F, c_samples);
        gl.Viewport(0, 0, c_width, c_height);
        gl.Enable(GL_MULTISAMPLE);
        gl.Enable(GL_FRAMEBUFFER_SRGB);
        gl.Enable(GL_DEPTH_TEST);
        gl.ClearColor(1, 1, 1, 1);
        gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        std::vector<std::array<GLuint, 3>> made;
        for (Cloth const & cloth : all) {
            std::array<GLuint, 3> & each = made.emplace_back();
            gl.GenVertexArrays(1, &each[2]);
            gl.BindVertexArray(each[2]);
            gl.GenBuffers(2, each.data());
            gl.BindBuffer(GL_ARRAY_BUFFER, each[0]);
            gl.BufferData(GL_ARRAY_BUFFER,
                          static_cast<GLsizeiptr>(cloth.numbers.size() * sizeof(float)),
                          cloth.numbers.data(), GL_STATIC_DRAW);
            gl.VertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 3 * sizeof(float), nullptr);
            gl.EnableVertexAttribArray(0);
            gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, each[1]);
            gl.BufferData(GL_ELEMENT_ARRAY_BUFFER,
                          static_cast<GLsizeiptr>(cloth.indices.size() * sizeof(std::uint32_t)),
                          cloth.indices.data(), GL_STATIC_DRAW);
            gl.DrawElements(GL_TRIANGLES, static_cast<GLsizei>(cloth.indices.size()),
                            GL_UNSIGNED_INT, nullptr);
        }
        gl.BindFramebuffer(GL_READ_FRAMEBUFFER, frames[0]);
        gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, frames[1]);
        gl.BlitFramebuffer(0, 0, c_width, c_height, 0, 0, c_width, c_height, GL_COLOR_BUFFER_BIT,
                           GL_NEAREST);
        gl.BindFramebuffer(GL_FRAMEBUFFER, frames[1]);
        gl.PixelStorei(GL_PACK_ALIGNMENT, 1);
        std::vector<std::uint8_t> pixels(std::size_t{3} * c_width * c_height);
        gl.ReadPixels(0, 0, c_width, c_height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
        benchmark::DoNotOptimize(pixels.data());
        for (std::array<GLuint, 3> const & each : made) {
            gl.DeleteBuffers(2, each.data());
            gl.DeleteVertexArrays(1, &each[2]);
        }
        gl.DeleteFramebuffers(2, frames.data());
        gl.DeleteRenderbuffers(3, stores.data());
        gl.DeleteProgram(program);
    }
    perTriangle(state);
}

void picture(benchmark::State & state, bool edges) {
    StrongRef<Vrx::Graphics::GroupNode> const top = Vrx::Graphics::GroupNode::make();
    StrongRef<Vrx::Graphics::GroupNode> const group = Vrx::Graphics::GroupNode::make();
    top->addChild(group.get());
    for (Cloth const & cloth : cloths(static_cast<unsigned>(state.range(0)))) {
        StrongRef<Vrx::Graphics::LODGeometryNode> const node =
            Vrx::Graphics::LODGeometryNode::make();
        node->geometry(cloth.mesh().get(), Vrx::Graphics::LevelAll);
        group->addChild(node.get());
    }
    PictureOptions options;
    options.width = c_width;
    options.height = c_height;
    options.edges = edges;
    for (auto _ : state) {
        ShownParts const parts(top.get());
        if (parts.model().size() != static_cast<std::size_t>(state.range(0)))
            state.SkipWithError("not all is shown");
        View view;
        view.position = TgPoint3d(0.5, 0.5, 3);
        view.target = TgPoint3d(0.5, 0.5, 0);
        check(fit(view, *parts.bounds(), double{c_width} / c_height, view));
        Picture::Picture drawn;
        check(draw(parts, view, options, drawn));
        benchmark::DoNotOptimize(drawn.pixels.data());
    }
    perTriangle(state);
}

void pictureWithoutEdges(benchmark::State & state) { picture(state, false); }
void pictureWithEdges(benchmark::State & state) { picture(state, true); }

BENCHMARK(bareCalls)->Arg(1)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(pictureWithoutEdges)->Arg(1)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(pictureWithEdges)->Arg(1)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace
