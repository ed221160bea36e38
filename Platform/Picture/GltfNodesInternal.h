// The nodes of a glTF file.

#ifndef VN_PLATFORM_PICTURE_GLTFNODESINTERNAL_H
#define VN_PLATFORM_PICTURE_GLTFNODESINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Graphics/NodeWalk.h"
#include "Platform/Picture/Gltf.h"
#include "Platform/Picture/GltfJsonInternal.h"
#include "Platform/Picture/GltfMeshesInternal.h"
#include "Platform/Scene/INodeSource.h"

namespace Vn::Picture {

// A tree of nodes by their numbers, each before those below it.  The first is the root.
class GltfNodes {
public:
    static constexpr std::uint32_t c_none = 0xFFFFFFFF;

    GltfNodes() : m_nodes(1) {}

    // Adds the graph below a group, and its meshes.  False if more than so many bytes of meshes
    // came together.
    bool addGraph(Vrx::Graphics::GroupNode const & top, GltfMeshes & meshes,
                  std::uint64_t mostBytes);
    // Adds a camera of the file, by its number.
    void addCamera(std::uint32_t camera, ViewFrame const & frame);

    // The box around all that is shown, in document space.
    std::optional<Vrx::Devices::BoundingBox> const & bounds() const noexcept { return m_bounds; }
    std::size_t parts() const noexcept { return m_parts; }
    std::size_t leftOut() const noexcept { return m_leftOut; }

    // Writes them all, the root with a matrix; false as above.  `facts` may be null.
    bool write(TgMatrix3d const & root, std::vector<GltfView> const & views, INodeFacts * facts,
               std::uint64_t mostBytes, JsonList & list);

private:
    struct Node {
        std::uint32_t parent = c_none;
        std::uint32_t first = c_none; // child
        std::uint32_t last = c_none;
        std::uint32_t next = c_none; // sibling
        std::uint32_t mesh = c_none;
        std::uint32_t split = c_none;                      // of m_splits
        Vrx::Graphics::GroupNode const * placed = nullptr; // the group whose place it has
        Scene::INodeSource * source = nullptr;             // that stands here and not above
        Scene::INodeSource * nearest = nullptr;            // that stands here or above
        bool hasSourceBelow = false;                       // another than the nearest
    };
    // A map as a product of two that glTF takes: the nodes stand one within the other.
    struct Split {
        TgVector3d way;
        std::array<double, 4> rotation{}; // x, y, z, w
        TgVector3d scale;
        TgMatrix3d inner; // a rotation
    };
    struct CameraNode {
        std::uint32_t node;
        std::uint32_t camera;
        TgMatrix3d place;
    };

    std::uint32_t add(std::uint32_t parent);
    std::uint32_t addGroup(Vrx::Graphics::GroupNode const & group, std::uint32_t parent);
    void addMesh(Vrx::Graphics::NodeWalk const & walk, std::uint32_t parent, GltfMeshes & meshes);
    void setSource(std::uint32_t node, Scene::INodeSource * source);
    static std::optional<Split> splitOf(TgMatrix3d const & map);
    void noteSourcesBelow();
    Json place(Node const & node) const;
    static void addFacts(NodeFacts const & facts, Json & object);

    std::vector<Node> m_nodes;
    std::vector<Split> m_splits;
    std::vector<CameraNode> m_cameras;
    std::optional<Vrx::Devices::BoundingBox> m_bounds;
    std::size_t m_parts = 0;
    std::size_t m_leftOut = 0;
};

} // namespace Vn::Picture

#endif
