// The meshes and materials of a glTF file.

#ifndef VN_PLATFORM_PICTURE_GLTFMESHESINTERNAL_H
#define VN_PLATFORM_PICTURE_GLTFMESHESINTERNAL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Picture/GltfJsonInternal.h"
#include "Platform/Types/Color.h"

namespace Vn::Picture {

// Keeps the numbers of each mesh once, whether nodes share it or have equal ones.  Vertices that no
// triangle names aren't kept, and neither are triangles of vertices that don't exist.
class GltfMeshes {
public:
    static constexpr std::uint32_t c_none = 0xFFFFFFFF;

    // The numbers of a mesh, which has to last as long as this does; c_none if a position isn't
    // finite or no triangle is left.
    std::uint32_t numbersOf(Vrx::Devices::SimpleMesh const & mesh);
    // The box around them.
    Vrx::Devices::BoundingBox const & box(std::uint32_t numbers) const {
        return m_numbers[numbers].box;
    }
    std::size_t size() const noexcept { return m_numbers.size(); }

    // The mesh of the file with these numbers and a color, whose channels are from 0 to 1.
    std::uint32_t meshOf(std::uint32_t numbers, Color const & color);

    // In bytes, of the lists and of the buffer.
    std::size_t textLength() const noexcept {
        return m_meshes.length() + m_materials.length() + m_accessors.length();
    }
    std::size_t bufferLength() const noexcept { return m_vertices.size() + m_indices.size(); }

    // Adds all lists but the buffers to an object that isn't closed.
    void appendTo(std::string & object) const;
    // The two halves of the one buffer.
    std::string const & vertices() const noexcept { return m_vertices; }
    std::string const & indices() const noexcept { return m_indices; }

private:
    struct Numbers {
        std::size_t vertexBegin = 0; // in bytes
        std::size_t vertexBytes = 0; // of the positions, and then the normals if there are any
        std::size_t indexBegin = 0;
        std::size_t indexBytes = 0;
        bool hasNormals = false;
        std::uint32_t positions = 0; // accessors
        std::uint32_t normals = 0;
        std::uint32_t indices = 0;
        Vrx::Devices::BoundingBox box;
        std::uint32_t material = c_none; // of the first mesh with them
        std::uint32_t mesh = 0;
        std::uint32_t sameHash = c_none; // other numbers with the same hash
    };
    // The numbers of a mesh before it is known whether they are new.
    struct Packed {
        std::vector<float> positions;
        std::vector<float> normals; // unit vectors; empty if one has no direction
        std::vector<std::uint32_t> indices;
        std::string vertexBytes;
        std::string indexBytes;
    };

    bool pack(Vrx::Devices::SimpleMesh const & mesh);
    void packNormals(Vrx::Devices::VertexBuffer const & vertices);
    void packIndices();
    bool isPacked(Numbers const & numbers) const;
    std::uint32_t addPacked();
    std::uint32_t materialOf(Color const & color);
    std::uint32_t addMesh(Numbers const & numbers, std::uint32_t material);

    std::unordered_map<Vrx::Devices::SimpleMesh const *, std::uint32_t> m_known;
    std::unordered_map<std::size_t, std::uint32_t> m_byHash; // the last of those with a hash
    std::vector<Numbers> m_numbers;
    // Further meshes by numbers and material.
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> m_meshOf;
    std::map<std::array<float, 4>, std::uint32_t> m_materialOf;
    JsonList m_meshes;
    JsonList m_materials;
    JsonList m_accessors;
    std::string m_vertices;
    std::string m_indices;
    // For one mesh after the other, so that memory is taken once.
    Packed m_packed;
    std::vector<std::uint32_t> m_used; // vertices of the mesh, in the order of the file
    struct Place {
        std::uint32_t turn = 0; // in which mesh this vertex was used last
        std::uint32_t place = 0;
    };
    std::vector<Place> m_places;
    std::uint32_t m_turn = 0;
};

} // namespace Vn::Picture

#endif
