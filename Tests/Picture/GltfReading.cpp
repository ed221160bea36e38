// Reads models by a library that isn't ours.

#include <cstring>
#include <fstream> // which the library takes for granted

#define TINYGLTF_IMPLEMENTATION
#define TINYGLTF_NO_EXTERNAL_IMAGE
#define TINYGLTF_NO_FS
#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#define TINYGLTF_NO_INCLUDE_JSON
#include <nlohmann/json.hpp>
#include <tiny_gltf.h>

#include "Tests/Picture/GltfTesting.h"

namespace Vn::Picture::Testing {

namespace {

TgMatrix3d mapOf(tinygltf::Node const & node) {
    TgMatrix3d map;
    if (!node.matrix.empty()) {
        for (unsigned i = 0; i < 16; ++i) map.entry(i % 4, i / 4, node.matrix[i]);
        return map;
    }
    if (!node.rotation.empty()) {
        double const x = node.rotation[0];
        double const y = node.rotation[1];
        double const z = node.rotation[2];
        double const w = node.rotation[3];
        double const rows[3][3] = {
            {1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
            {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
            {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}};
        for (unsigned row = 0; row < 3; ++row)
            for (unsigned column = 0; column < 3; ++column)
                map.entry(row, column, rows[row][column]);
    }
    for (unsigned row = 0; row < 3; ++row) {
        for (unsigned column = 0; !node.scale.empty() && column < 3; ++column)
            map.entry(row, column, map.entry(row, column) * node.scale[column]);
        if (!node.translation.empty()) map.entry(row, 3, node.translation[row]);
    }
    return map;
}

class Reader {
public:
    Reader(tinygltf::Model const & model, Read & read) : m_rModel(model), m_rRead(read) {}

    void readAll() {
        struct Way {
            int node;
            TgMatrix3d map;
        };
        std::vector<Way> ways;
        for (int const node : m_rModel.scenes.at(0).nodes) ways.push_back({node, TgMatrix3d()});
        while (!ways.empty()) {
            Way const way = ways.back();
            ways.pop_back();
            tinygltf::Node const & node = m_rModel.nodes.at(static_cast<std::size_t>(way.node));
            TgMatrix3d const map = way.map * mapOf(node);
            if (node.mesh >= 0)
                readMesh(m_rModel.meshes.at(static_cast<std::size_t>(node.mesh)), map);
            for (int const child : node.children) ways.push_back({child, map});
        }
        if (m_rModel.meshes.empty()) return;
        tinygltf::Primitive const & first = m_rModel.meshes[0].primitives.at(0);
        m_rRead.positions = vectors(first.attributes.at("POSITION"));
        if (first.attributes.contains("NORMAL"))
            m_rRead.normals = vectors(first.attributes.at("NORMAL"));
    }

private:
    unsigned char const * bytesOf(tinygltf::Accessor const & accessor, std::size_t size) const {
        auto const & view = m_rModel.bufferViews.at(static_cast<std::size_t>(accessor.bufferView));
        auto const & data = m_rModel.buffers.at(0).data;
        EXPECT_LE(accessor.byteOffset + size, view.byteLength);
        EXPECT_LE(view.byteOffset + view.byteLength, data.size());
        EXPECT_EQ((view.byteOffset + accessor.byteOffset) % 4, 0U);
        return data.data() + view.byteOffset + accessor.byteOffset;
    }

    std::vector<std::array<float, 3>> vectors(int number) const {
        auto const & accessor = m_rModel.accessors.at(static_cast<std::size_t>(number));
        std::vector<std::array<float, 3>> all(accessor.count);
        std::memcpy(all.data(), bytesOf(accessor, 12 * all.size()), 12 * all.size());
        return all;
    }

    void readMesh(tinygltf::Mesh const & mesh, TgMatrix3d const & map) {
        tinygltf::Primitive const & primitive = mesh.primitives.at(0);
        auto const positions = vectors(primitive.attributes.at("POSITION"));
        auto const & indices = m_rModel.accessors.at(static_cast<std::size_t>(primitive.indices));
        bool const isShort = indices.componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT;
        unsigned char const * const bytes = bytesOf(indices, indices.count * (isShort ? 2 : 4));
        for (std::size_t i = 0; i < indices.count; ++i) {
            std::uint32_t index = 0;
            std::memcpy(&index, bytes + i * (isShort ? 2 : 4), isShort ? 2 : 4);
            auto const [x, y, z] = positions.at(index);
            BoundingBox const point = BoundingBox::of(map * TgPoint3d(x, y, z));
            if (m_rRead.box)
                m_rRead.box->add(point);
            else
                m_rRead.box = point;
        }
        m_rRead.triangles += indices.count / 3;
    }

    tinygltf::Model const & m_rModel;
    Read & m_rRead;
};

} // namespace

Read readByTinyGltf(std::string const & bytes) {
    tinygltf::Model model;
    tinygltf::TinyGLTF loader;
    std::string error;
    std::string warning;
    auto const size = static_cast<unsigned>(bytes.size());
    bool const isGood =
        bytes.starts_with("glTF")
            ? loader.LoadBinaryFromMemory(&model, &error, &warning,
                                          reinterpret_cast<unsigned char const *>(bytes.data()),
                                          size)
            : loader.LoadASCIIFromString(&model, &error, &warning, bytes.data(), size, "");
    Read read;
    read.complaints = (isGood ? "" : "refused: ") + error + warning;
    if (!isGood) return read;
    read.nodes = model.nodes.size();
    read.meshes = model.meshes.size();
    Reader(model, read).readAll();
    return read;
}

} // namespace Vn::Picture::Testing
