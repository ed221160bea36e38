// Models as glTF, and what another program reads of them.

#ifndef VN_TESTS_PICTURE_GLTFTESTING_H
#define VN_TESTS_PICTURE_GLTFTESTING_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Platform/Picture/Gltf.h"
#include "Tests/Picture/PictureTesting.h"

namespace Vn::Picture::Testing {

using Json = nlohmann::json;

// A file that has to be made.
inline GltfModel gltfOf(GroupNode const * top, GltfOptions const & options = {}) {
    GltfModel model;
    Status const status = makeGltf(top, options, model);
    EXPECT_TRUE(status) << status.toString();
    return model;
}

// The object in a file.
inline Json objectOf(std::string const & bytes) {
    if (!bytes.starts_with("glTF")) return Json::parse(bytes);
    std::uint32_t length = 0;
    for (unsigned i = 4; i-- > 0;)
        length = length << 8 | static_cast<unsigned char>(bytes.at(12 + i));
    return Json::parse(bytes.substr(20, length));
}

// The object of a .glb of a graph.
inline Json jsonOf(GroupNode const * top, GltfOptions const & options = {}) {
    return objectOf(gltfOf(top, options).bytes);
}

// What tinygltf reads of a file: a box in the space of the file around all meshes, by the way from
// the root; and what it finds wrong.
struct Read {
    std::string complaints;
    std::size_t nodes = 0;
    std::size_t meshes = 0;
    std::size_t triangles = 0; // of meshes by their nodes
    std::optional<BoundingBox> box;
    std::vector<std::array<float, 3>> positions; // of the first mesh
    std::vector<std::array<float, 3>> normals;
};
Read readByTinyGltf(std::string const & bytes);

} // namespace Vn::Picture::Testing

#endif
