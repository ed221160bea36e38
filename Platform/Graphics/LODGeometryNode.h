#ifndef VN_PLATFORM_GRAPHICS_LODGEOMETRYNODE_H
#define VN_PLATFORM_GRAPHICS_LODGEOMETRYNODE_H

#include <array>

#include "Platform/Graphics/RenderNode.h"
#include "Platform/Graphics/SimpleMesh.h"

namespace Vrx::Graphics {

// The levels of detail, as bits of a mask.
enum ELevel { LevelFinest = 1, LevelFine = 2, LevelCoarse = 4, LevelCoarsest = 8, LevelAll = 0xF };

// A node that draws a mesh: one for each level of detail, all of which may be the same.  Meshes are
// shared by any number of nodes.
class VRX_API LODGeometryNode final : public ARenderNode {
public:
    // How many levels there are.
    static constexpr unsigned c_levels = 4;

    // A node without meshes, which draws nothing.
    static Vn::StrongRefCreator<LODGeometryNode> make();
    ~LODGeometryNode() override;

    // The mesh of a level, counted from 0, the finest; null if it has none and for a bad level.
    Devices::SimpleMesh * mesh(unsigned level = 0) const noexcept;
    // Sets the mesh, which may be null, of the levels whose bits are set in a mask of ELevel. Other
    // bits mean nothing.
    void geometry(Devices::SimpleMesh * mesh, int levels) noexcept;

private:
    LODGeometryNode() noexcept : ARenderNode(KindGeometry) {}

    std::array<Vn::StrongRef<Devices::SimpleMesh>, c_levels> m_meshes;
};

} // namespace Vrx::Graphics

#endif
