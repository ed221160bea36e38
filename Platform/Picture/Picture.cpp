#include "Platform/Picture/Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "Platform/Picture/DeviceInternal.h"
#include "Platform/Picture/EdgesInternal.h"
#include "Platform/Picture/GlInternal.h"

namespace Vn::Picture {

using Vrx::Devices::BoundingBox;
using Vrx::Devices::SimpleMesh;

namespace {

constexpr char c_operation[] = "draw the picture";
constexpr int c_samples = 4;
// How dark a face is that the light passes by, and an edge, as parts of the color.
constexpr float c_ambient = 0.25F;
constexpr float c_edge = 0.1F;

// The face of a triangle is flat: its normal follows from how the position changes between pixels.
constexpr char c_vertexShader[] = R"(#version 330 core
layout(location = 0) in vec3 position;
uniform mat4 toEye;
uniform mat4 projection;
out vec3 eye;
void main() {
    vec4 place = toEye * vec4(position, 1.0);
    eye = place.xyz;
    gl_Position = projection * place;
}
)";
constexpr char c_fragmentShader[] = R"(#version 330 core
in vec3 eye;
uniform vec4 color;
uniform float ambient;
uniform float perspective;
out vec4 result;
void main() {
    vec3 normal = cross(dFdx(eye), dFdy(eye));
    float size = length(normal);
    vec3 lamp = perspective > 0.5 ? normalize(-eye) : vec3(0.0, 0.0, 1.0);
    float light = size > 0.0 ? abs(dot(normal, lamp)) / size : 1.0;
    result = vec4(color.rgb * (ambient + (1.0 - ambient) * light), color.a);
}
)";

float linear(float srgb) {
    return srgb <= 0.04045F ? srgb / 12.92F : std::pow((srgb + 0.055F) / 1.055F, 2.4F);
}

// Four columns of four, as OpenGL takes them.
using Columns = std::array<float, 16>;

Columns columns(TgMatrix3d const & matrix) {
    Columns result;
    for (unsigned column = 0; column < 4; ++column)
        for (unsigned row = 0; row < 4; ++row)
            result[column * 4 + row] = static_cast<float>(matrix.entry(row, column));
    return result;
}

// Into the space of the eye, in which the model has a size of about 1: its numbers are then such as
// single precision has, however large or far away the model is.
TgMatrix3d toEye(ViewFrame const & frame, double scale) {
    TgMatrix3d matrix;
    TgVector3d const * const rows[] = {&frame.right, &frame.up, &frame.back};
    for (unsigned row = 0; row < 3; ++row) {
        matrix.entry(row, 0, rows[row]->x * scale);
        matrix.entry(row, 1, rows[row]->y * scale);
        matrix.entry(row, 2, rows[row]->z * scale);
    }
    return matrix * TgMatrix3d::translation(TgPoint3d::kOrigin - frame.eye);
}

// How deep the model reaches, from the eye into the picture.
struct Depths {
    double least;
    double most;
};

Depths depthsOf(ViewFrame const & frame, BoundingBox const & box) {
    Depths depths{std::numeric_limits<double>::infinity(),
                  -std::numeric_limits<double>::infinity()};
    for (unsigned i = 0; i < BoundingBox::c_corners; ++i) {
        double const depth = -frame.seen(box.corner(i)).z;
        depths.least = std::min(depths.least, depth);
        depths.most = std::max(depths.most, depth);
    }
    double const margin = (depths.most - depths.least) * 0.01 + frame.height * 1e-3;
    return {depths.least - margin, depths.most + margin};
}

TgMatrix3d projectionOf(ViewFrame const & frame, Depths depths, double scale) {
    TgMatrix3d matrix;
    double const width = frame.width * scale / 2;
    double const height = frame.height * scale / 2;
    double far = depths.most * scale;
    double near = depths.least * scale;
    if (frame.perspective) {
        double const distance = frame.distance * scale;
        far = std::max(far, distance * 1e-3);
        near = std::max(near, far * 1e-4); // more would leave the depths too few digits
        far = std::max(far, near * 2);
        matrix.entry(0, 0, distance / width);
        matrix.entry(1, 1, distance / height);
        matrix.entry(2, 2, -(far + near) / (far - near));
        matrix.entry(2, 3, -2 * far * near / (far - near));
        matrix.entry(3, 2, -1);
        matrix.entry(3, 3, 0);
    } else {
        matrix.entry(0, 0, 1 / width);
        matrix.entry(1, 1, 1 / height);
        matrix.entry(2, 2, -2 / (far - near));
        matrix.entry(2, 3, -(far + near) / (far - near));
    }
    return matrix;
}

// A mesh in the memory of OpenGL.
struct Uploaded {
    GLuint array = 0;
    std::array<GLuint, 3> buffers{}; // vertices, triangles, edges
    GLsizei indices = 0;
    GLsizei edges = 0;
};

// One picture: what it makes in the device goes with it.
class Drawing {
public:
    Drawing(Gl const & gl, PictureOptions const & options) : m_gl(gl), m_options(options) {}
    ~Drawing() {
        for (auto const & [mesh, uploaded] : m_meshes) {
            m_gl.DeleteBuffers(3, uploaded.buffers.data());
            m_gl.DeleteVertexArrays(1, &uploaded.array);
        }
        m_gl.DeleteFramebuffers(2, m_frames.data());
        m_gl.DeleteRenderbuffers(3, m_stores.data());
        if (m_program) m_gl.DeleteProgram(m_program);
    }
    Drawing(Drawing const &) = delete;
    Drawing & operator=(Drawing const &) = delete;

    Status run(ShownParts const & parts, ViewFrame const & frame, Picture & picture) {
        if (Status const status = prepare(); !status) return status;
        useView(parts, frame);
        std::vector<ShownPart const *> opaque;
        std::vector<ShownPart const *> other;
        auto const sort = [&](std::vector<ShownPart> const & all) {
            for (ShownPart const & part : all)
                (part.color.opacity < 1 ? other : opaque).push_back(&part);
        };
        if (m_options.background) sort(parts.background());
        sort(parts.model());
        for (ShownPart const * const part : opaque) drawPart(*part);
        drawOthers(std::move(other));
        return read(picture);
    }

private:
    GLuint shader(GLenum kind, char const * source) {
        GLuint const made = m_gl.CreateShader(kind);
        m_gl.ShaderSource(made, 1, &source, nullptr);
        m_gl.CompileShader(made);
        m_gl.AttachShader(m_program, made);
        m_gl.DeleteShader(made); // with the program
        return made;
    }

    Status failed(char const * what) const { return failed(what, m_gl.GetError()); }
    static Status failed(char const * what, GLenum error) {
        return error == GL_OUT_OF_MEMORY ? Status::outOfMemory(c_operation)
                                         : Status::failed(c_operation, {}, what);
    }

    Status prepare() {
        m_program = m_gl.CreateProgram();
        shader(GL_VERTEX_SHADER, c_vertexShader);
        shader(GL_FRAGMENT_SHADER, c_fragmentShader);
        m_gl.LinkProgram(m_program);
        GLint isLinked = 0;
        m_gl.GetProgramiv(m_program, GL_LINK_STATUS, &isLinked);
        if (!isLinked) return failed("its shaders can't be linked");
        m_gl.UseProgram(m_program);

        auto const width = static_cast<GLsizei>(m_options.width);
        auto const height = static_cast<GLsizei>(m_options.height);
        m_gl.GenFramebuffers(2, m_frames.data());
        m_gl.GenRenderbuffers(3, m_stores.data());
        struct Store {
            int frame;
            GLenum attachment;
            GLenum format;
            int samples;
        };
        Store const stores[] = {{0, GL_COLOR_ATTACHMENT0, GL_SRGB8_ALPHA8, c_samples},
                                {0, GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT32F, c_samples},
                                {1, GL_COLOR_ATTACHMENT0, GL_SRGB8_ALPHA8, 0}};
        for (std::size_t i = 0; i < std::size(stores); ++i) {
            Store const & store = stores[i];
            m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_frames[static_cast<std::size_t>(store.frame)]);
            m_gl.BindRenderbuffer(GL_RENDERBUFFER, m_stores[i]);
            m_gl.RenderbufferStorageMultisample(GL_RENDERBUFFER, store.samples, store.format, width,
                                                height);
            m_gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, store.attachment, GL_RENDERBUFFER,
                                         m_stores[i]);
        }
        for (GLuint const frame : m_frames) {
            m_gl.BindFramebuffer(GL_FRAMEBUFFER, frame);
            if (m_gl.CheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
                return failed("there is no memory for its pixels");
        }
        m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_frames[0]);
        m_gl.Viewport(0, 0, width, height);
        m_gl.Enable(GL_MULTISAMPLE);
        m_gl.Enable(GL_FRAMEBUFFER_SRGB);
        m_gl.Enable(GL_DEPTH_TEST);
        m_gl.BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        Color const & backdrop = m_options.backdrop;
        m_gl.ClearColor(linear(backdrop.red), linear(backdrop.green), linear(backdrop.blue), 1);
        m_gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        return Status::success();
    }

    void useView(ShownParts const & parts, ViewFrame const & frame) {
        std::optional<BoundingBox> bounds = parts.bounds();
        if (m_options.background && parts.backgroundBounds()) {
            if (bounds)
                bounds->add(*parts.backgroundBounds());
            else
                bounds = parts.backgroundBounds();
        }
        double const scale = 1 / std::max(frame.width, frame.height);
        m_toEye = toEye(frame, scale);
        Depths const depths = bounds ? depthsOf(frame, *bounds) : Depths{0, 1};
        Columns const projection = columns(projectionOf(frame, depths, scale));
        m_gl.UniformMatrix4fv(m_gl.GetUniformLocation(m_program, "projection"), 1, GL_FALSE,
                              projection.data());
        m_gl.Uniform1f(m_gl.GetUniformLocation(m_program, "perspective"),
                       frame.perspective ? 1.0F : 0.0F);
        m_toEyeAt = m_gl.GetUniformLocation(m_program, "toEye");
        m_colorAt = m_gl.GetUniformLocation(m_program, "color");
        m_ambientAt = m_gl.GetUniformLocation(m_program, "ambient");
    }

    Uploaded const & uploaded(SimpleMesh const & mesh) {
        auto const [place, isNew] = m_meshes.try_emplace(&mesh);
        Uploaded & made = place->second;
        if (!isNew) return made;
        m_gl.GenVertexArrays(1, &made.array);
        m_gl.BindVertexArray(made.array);
        m_gl.GenBuffers(3, made.buffers.data());
        auto const & vertices = *mesh.vertexBuffer();
        std::vector<std::uint32_t> indices;
        indices.reserve(3 * mesh.triangles());
        for (std::size_t i = 0; i < mesh.triangles(); ++i) {
            std::array<std::uint32_t, 3> const corners = mesh.triangle(i);
            if (std::all_of(corners.begin(), corners.end(),
                            [&](std::uint32_t corner) { return corner < vertices.vertices(); }))
                indices.insert(indices.end(), corners.begin(), corners.end());
        }
        made.indices = static_cast<GLsizei>(indices.size());
        std::vector<std::uint32_t> edges;
        if (m_options.edges) edges = edgesOf(mesh);
        made.edges = static_cast<GLsizei>(edges.size());
        store(GL_ARRAY_BUFFER, made.buffers[0], vertices.numbers());
        m_gl.VertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE,
                                 static_cast<GLsizei>(vertices.format().numbers() * sizeof(float)),
                                 nullptr);
        m_gl.EnableVertexAttribArray(0);
        store(GL_ELEMENT_ARRAY_BUFFER, made.buffers[1], std::span<std::uint32_t const>(indices));
        store(GL_ELEMENT_ARRAY_BUFFER, made.buffers[2], std::span<std::uint32_t const>(edges));
        return made;
    }

    template <class Number>
    void store(GLenum target, GLuint buffer, std::span<Number const> numbers) {
        m_gl.BindBuffer(target, buffer);
        m_gl.BufferData(target, static_cast<GLsizeiptr>(numbers.size_bytes()), numbers.data(),
                        GL_STATIC_DRAW);
    }

    void drawPart(ShownPart const & part) {
        Uploaded const & mesh = uploaded(*part.mesh);
        m_gl.BindVertexArray(mesh.array);
        Columns const place = columns(m_toEye * part.transform);
        m_gl.UniformMatrix4fv(m_toEyeAt, 1, GL_FALSE, place.data());
        Color const & color = part.color;
        std::array<float, 3> const light{linear(color.red), linear(color.green),
                                         linear(color.blue)};
        m_gl.Enable(GL_POLYGON_OFFSET_FILL); // the edges are in front of their faces
        m_gl.PolygonOffset(1, 1);
        m_gl.Uniform1f(m_ambientAt, c_ambient);
        m_gl.Uniform4f(m_colorAt, light[0], light[1], light[2], color.opacity);
        m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh.buffers[1]);
        m_gl.DrawElements(GL_TRIANGLES, mesh.indices, GL_UNSIGNED_INT, nullptr);
        m_gl.Disable(GL_POLYGON_OFFSET_FILL);
        if (mesh.edges == 0) return;
        m_gl.Uniform1f(m_ambientAt, 1);
        m_gl.Uniform4f(m_colorAt, light[0] * c_edge, light[1] * c_edge, light[2] * c_edge, 1);
        m_gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh.buffers[2]);
        m_gl.DrawElements(GL_LINES, mesh.edges, GL_UNSIGNED_INT, nullptr);
    }

    // Through what isn't opaque, the farther of it is seen; each hides nothing.
    void drawOthers(std::vector<ShownPart const *> parts) {
        if (parts.empty()) return;
        std::vector<std::pair<double, ShownPart const *>> order;
        for (ShownPart const * const part : parts) {
            BoundingBox const box = part->mesh->bounds()->transformed(m_toEye * part->transform);
            order.emplace_back(box.low.z + box.high.z, part);
        }
        std::stable_sort(order.begin(), order.end(),
                         [](auto const & a, auto const & b) { return a.first < b.first; });
        m_gl.Enable(GL_BLEND);
        m_gl.DepthMask(GL_FALSE);
        for (auto const & [depth, part] : order) drawPart(*part);
        m_gl.DepthMask(GL_TRUE);
        m_gl.Disable(GL_BLEND);
    }

    Status read(Picture & picture) {
        auto const width = static_cast<GLsizei>(m_options.width);
        auto const height = static_cast<GLsizei>(m_options.height);
        m_gl.BindFramebuffer(GL_READ_FRAMEBUFFER, m_frames[0]);
        m_gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, m_frames[1]);
        m_gl.BlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT,
                             GL_NEAREST);
        m_gl.BindFramebuffer(GL_FRAMEBUFFER, m_frames[1]);
        m_gl.PixelStorei(GL_PACK_ALIGNMENT, 1);
        std::size_t const row = std::size_t{3} * m_options.width;
        std::vector<std::uint8_t> pixels(row * m_options.height);
        m_gl.ReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
        if (GLenum const error = m_gl.GetError(); error != GL_NO_ERROR)
            return failed("its pixels can't be read", error);
        // OpenGL counts rows from below.
        for (std::size_t low = 0, high = m_options.height - 1; low < high; ++low, --high)
            std::swap_ranges(pixels.begin() + static_cast<std::ptrdiff_t>(low * row),
                             pixels.begin() + static_cast<std::ptrdiff_t>((low + 1) * row),
                             pixels.begin() + static_cast<std::ptrdiff_t>(high * row));
        picture = {m_options.width, m_options.height, std::move(pixels)};
        return Status::success();
    }

    Gl const & m_gl;
    PictureOptions const & m_options;
    GLuint m_program = 0;
    std::array<GLuint, 2> m_frames{}; // with samples, and without
    std::array<GLuint, 3> m_stores{};
    TgMatrix3d m_toEye;
    GLint m_toEyeAt = -1;
    GLint m_colorAt = -1;
    GLint m_ambientAt = -1;
    std::map<SimpleMesh const *, Uploaded> m_meshes;
};

// The device of the process, made for the first picture.
struct Shared {
    std::mutex mutex;
    std::unique_ptr<Device> device;
    Gl gl;
};

Shared & shared() {
    static Shared * const s_shared = new Shared; // its context outlives whatever draws
    return *s_shared;
}

} // namespace

Status checkSize(PictureOptions const & options) {
    if (options.width == 0 || options.height == 0)
        return Status::invalidArgument(c_operation, {}, "it has no pixels");
    if (options.width > PictureOptions::c_maxSide || options.height > PictureOptions::c_maxSide)
        return Status::invalidArgument(c_operation, {},
                                       "its sides have more than " +
                                           std::to_string(PictureOptions::c_maxSide) + " pixels");
    if (std::size_t{options.width} * options.height > PictureOptions::c_maxPixels)
        return Status::invalidArgument(c_operation, {},
                                       "it has more than " +
                                           std::to_string(PictureOptions::c_maxPixels) + " pixels");
    return Status::success();
}

Status draw(ShownParts const & parts, View const & view, PictureOptions const & options,
            Picture & picture) {
    if (Status const status = checkSize(options); !status) return status;
    ViewFrame frame;
    if (Status const status =
            makeFrame(view, static_cast<double>(options.width) / options.height, frame);
        !status)
        return status;
    Shared & all = shared();
    std::lock_guard const guard(all.mutex);
    if (!all.device) {
        std::unique_ptr<Device> device;
        Status status = Device::open(device);
        if (status) status = device->makeCurrent();
        if (status) status = all.gl.load(*device);
        if (!status) return status;
        all.device = std::move(device);
    }
    if (Status const status = all.device->makeCurrent(); !status) return status;
    return Drawing(all.gl, options).run(parts, frame, picture);
}

} // namespace Vn::Picture
