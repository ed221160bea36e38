#include "Platform/Picture/Gltf.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "Platform/Base/Text.h"
#include "Platform/Picture/GltfJsonInternal.h"
#include "Platform/Picture/GltfMeshesInternal.h"
#include "Platform/Picture/GltfNodesInternal.h"

namespace Vn::Picture {

using Vrx::Devices::BoundingBox;

namespace {

constexpr double c_metresPerCm = 0.01;

bool hasDirection(TgVector3d const & vector) {
    double const length = std::hypot(vector.x, vector.y, vector.z);
    return std::isfinite(length) && length > 0;
}

// From document space to file space.
TgMatrix3d rootOf(GltfOptions const & options) {
    // What is up is found as what a view from above looks against, and the side that the model
    // faces as what is up in that view: what isn't sound is replaced as views do it.
    View above;
    above.position = TgPoint3d() + (hasDirection(options.up) ? options.up : TgVector3d(0, 0, 1));
    above.up = hasDirection(options.front) ? -options.front : TgVector3d();
    ViewFrame frame;
    static_cast<void>(makeFrame(above, 1, frame));
    TgMatrix3d root;
    unsigned row = 0;
    for (TgVector3d const & axis : {-frame.right, frame.back, frame.up}) {
        root.entry(row, 0, axis.x * c_metresPerCm + 0.0); // no -0
        root.entry(row, 1, axis.y * c_metresPerCm + 0.0);
        root.entry(row, 2, axis.z * c_metresPerCm + 0.0);
        ++row;
    }
    return root;
}

struct Depths {
    double near = 0;
    double far = 0;
};

// Around all that is shown, in cm before the eye; what is behind that isn't seen.
Depths depthsOf(ViewFrame const & frame, std::optional<BoundingBox> const & bounds) {
    double least = frame.distance;
    double most = frame.distance;
    for (unsigned i = 0; bounds && i < BoundingBox::c_corners; ++i) {
        double const depth = -frame.seen(bounds->corner(i)).z;
        least = i == 0 ? depth : std::min(least, depth);
        most = i == 0 ? depth : std::max(most, depth);
    }
    double const margin = (most - least) / 100;
    Depths depths;
    depths.far = std::max(most + margin, frame.distance / 1000);
    depths.near = std::max(least - margin, depths.far * 1e-4);
    depths.far = std::max(depths.far, depths.near * 2);
    return depths;
}

// A length in metres that programs can keep as float, and that isn't 0 there.
std::optional<double> metres(double cm) {
    double const length = cm * c_metresPerCm;
    bool const isSize = length >= static_cast<double>(std::numeric_limits<float>::min()) &&
                        length <= static_cast<double>(std::numeric_limits<float>::max());
    return isSize ? std::optional(length) : std::nullopt;
}

// Nothing if the view can't be in the file.
std::optional<Json> cameraOf(GltfView const & named, std::optional<BoundingBox> const & bounds,
                             ViewFrame & frame) {
    if (!makeFrame(named.view, named.view.width / named.view.height, frame)) return std::nullopt;
    Depths const depths = depthsOf(frame, bounds);
    auto const near = metres(depths.near);
    auto const far = metres(depths.far);
    auto const width = metres(frame.width / 2);
    auto const height = metres(frame.height / 2);
    double const eye =
        std::max({std::fabs(frame.eye.x), std::fabs(frame.eye.y), std::fabs(frame.eye.z), 1.0});
    if (!near || !far || !width || !height || !metres(eye)) return std::nullopt;
    Json camera;
    if (!named.name.empty()) camera["name"] = Text::toUtf8(named.name);
    camera["type"] = frame.perspective ? "perspective" : "orthographic";
    Json & lens = camera[frame.perspective ? "perspective" : "orthographic"];
    if (frame.perspective) {
        double const angle = 2 * std::atan2(frame.height / 2, frame.distance);
        if (!(angle > 1e-6 && angle < 3.14)) return std::nullopt;
        lens["aspectRatio"] = frame.width / frame.height;
        lens["yfov"] = angle;
    } else {
        lens["xmag"] = *width;
        lens["ymag"] = *height;
    }
    lens["znear"] = *near;
    lens["zfar"] = *far;
    return camera;
}

void appendBase64(std::string & text, std::string const & first, std::string const & second) {
    constexpr char c_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::uint32_t bits = 0;
    unsigned bytes = 0;
    for (std::string const * const half : {&first, &second}) {
        for (char const byte : *half) {
            bits = bits << 8 | static_cast<unsigned char>(byte);
            if (++bytes < 3) continue;
            for (unsigned shift : {18U, 12U, 6U, 0U}) text += c_digits[bits >> shift & 0x3F];
            bits = 0;
            bytes = 0;
        }
    }
    if (bytes == 0) return;
    bits <<= 8 * (3 - bytes);
    text += c_digits[bits >> 18 & 0x3F];
    text += c_digits[bits >> 12 & 0x3F];
    text += bytes == 2 ? c_digits[bits >> 6 & 0x3F] : '=';
    text += '=';
}

void appendNumber(std::string & bytes, std::uint64_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
}

constexpr std::uint64_t roundedUp(std::uint64_t length) { return (length + 3) / 4 * 4; }

Status isTooLarge(std::uint64_t most) {
    return Status(StatusUnsupported, "make the model", {},
                  "it would have more than " + std::to_string(most) + " bytes");
}

constexpr std::uint64_t c_binaryHeader = 12;
constexpr std::uint64_t c_chunkHeader = 8;

// For names of lists, the views of the buffer, and what stands around it.
constexpr std::uint64_t c_slack = 1000;

// The parts of the object, and the file that is put together of them at once.
struct Parts {
    std::string head; // up to the lists
    JsonList nodes;
    JsonList cameras;
    GltfMeshes meshes;

    // What the lists, the meshes apart from the buffer, and the end take at most.
    std::uint64_t textLength() const {
        return head.size() + nodes.length() + cameras.length() + meshes.textLength() + c_slack;
    }

    // Up to the buffer, which isn't closed if there is one.
    void appendTo(std::string & object) const {
        object += head;
        nodes.appendTo(object, "nodes");
        meshes.appendTo(object);
        cameras.appendTo(object, "cameras");
        if (std::size_t const buffer = meshes.bufferLength())
            object += ",\"buffers\":[{\"byteLength\":" + std::to_string(buffer);
    }
};

constexpr char c_uri[] = ",\"uri\":\"data:application/octet-stream;base64,";

void writeText(Parts const & parts, std::string & bytes) {
    parts.appendTo(bytes);
    if (parts.meshes.bufferLength() > 0) {
        bytes += c_uri;
        appendBase64(bytes, parts.meshes.vertices(), parts.meshes.indices());
        bytes += "\"}]";
    }
    bytes += "}\n";
}

void writeBinary(Parts const & parts, std::string & bytes) {
    std::uint64_t const buffer = parts.meshes.bufferLength(); // a multiple of four
    bytes.assign(c_binaryHeader + c_chunkHeader, '\0');
    parts.appendTo(bytes);
    bytes += buffer > 0 ? "}]}" : "}";
    bytes.resize(roundedUp(bytes.size()), ' ');
    std::uint64_t const text = bytes.size() - c_binaryHeader - c_chunkHeader;
    std::string header = "glTF";
    appendNumber(header, 2);
    appendNumber(header, bytes.size() + (buffer > 0 ? c_chunkHeader + buffer : 0));
    appendNumber(header, text);
    header += "JSON";
    bytes.replace(0, header.size(), header);
    if (buffer == 0) return;
    appendNumber(bytes, buffer);
    bytes.append("BIN\0", 4);
    bytes += parts.meshes.vertices();
    bytes += parts.meshes.indices();
}

// False if the file would be larger than that.
bool write(Parts const & parts, bool binary, std::uint64_t mostBytes, std::string & bytes) {
    std::uint64_t const buffer = parts.meshes.bufferLength();
    std::uint64_t const length = parts.textLength() + (binary ? buffer : (buffer + 2) / 3 * 4);
    if (length > mostBytes + c_slack) return false;
    bytes.reserve(length);
    if (binary)
        writeBinary(parts, bytes);
    else
        writeText(parts, bytes);
    return bytes.size() <= mostBytes;
}

std::string headOf(GltfOptions const & options) {
    Json asset;
    asset["version"] = "2.0";
    if (!options.generator.empty()) asset["generator"] = options.generator;
    Json scene;
    scene["nodes"] = {0};
    return "{\"asset\":" + textOf(asset) + ",\"scene\":0,\"scenes\":[" + textOf(scene) + ']';
}

} // namespace

Status makeGltf(Vrx::Graphics::GroupNode const * top, GltfOptions const & options,
                GltfModel & model) {
    std::uint64_t const most = std::min(options.mostBytes, GltfOptions::c_mostBytes);
    Parts parts;
    GltfNodes nodes;
    if (top && !nodes.addGraph(*top, parts.meshes, most)) return isTooLarge(most);
    GltfModel made;
    std::vector<GltfView> views; // of the cameras
    for (GltfView const & view : options.views) {
        ViewFrame frame;
        if (std::optional<Json> const camera = cameraOf(view, nodes.bounds(), frame)) {
            nodes.addCamera(parts.cameras.add(*camera), frame);
            views.push_back(view);
        } else
            ++made.badViews;
    }
    parts.head = headOf(options);
    if (!nodes.write(rootOf(options), views, options.facts, most, parts.nodes) ||
        !write(parts, options.binary, most, made.bytes))
        return isTooLarge(most);
    made.parts = nodes.parts();
    made.meshes = parts.meshes.size();
    made.leftOut = nodes.leftOut();
    model = std::move(made);
    return Status::success();
}

} // namespace Vn::Picture
