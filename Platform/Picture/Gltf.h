// Models as glTF 2.0, the format by which programs that show things exchange them.
//
// Definitions
//   document space: that of the graph.  Lengths are in cm; what is up and where the front looks is
//     up to the document.
//   file space: that of glTF.  Lengths are in m, the axis of y is up, the front of the model faces
//     the axis of z, and what is at the right of who sees the front lies along the axis of x.
//   part: a source of nodes with no node of another source below its own.
//
// Invariants of a file
//   1. It has one scene with one root, whose matrix leads from document space to file space.  Below
//      it all numbers are those of the graph: the root stands for the graph's own top group, unless
//      that is placed, and each node below for one of the graph, in the same order.  The graph may
//      be of any depth, and empty.
//   2. A map that isn't made of a scale along the axes, a rotation and a shift, as glTF wants it,
//      becomes two nodes, one within the other, which together make the map.
//   3. What pictures leave out is left out: what is hidden, what stands in groups of WorldScreen,
//      the background, and what has a NaN or an infinity.  So is what is beyond the range of float.
//   4. Meshes are triangles of the finest level of detail: positions, and the normals of a mesh all
//      of which have a direction.  A mesh is in the file once for each color that it shows in, and
//      its numbers once, however often it stands in the graph, and in how many equal copies.
//   5. Materials are colors: the sRGB channels of the graph made linear, without metal, seen from
//      both sides as in pictures, blended where they aren't opaque.
//   6. Numbers and meshes are within the file.  No list is empty, as glTF wants it.
//   7. The bytes follow from the graph and the options alone.
//
// Costs the same for each node, mesh number and camera.  Memory is a few times the file.

#ifndef VN_PLATFORM_PICTURE_GLTF_H
#define VN_PLATFORM_PICTURE_GLTF_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Base/Status.h"
#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Picture/Export.h"
#include "Platform/Picture/View.h"
#include "Platform/Scene/INodeSource.h"

namespace Vn::Picture {

// What a file tells of a node beside its place and mesh.
struct NodeFacts {
    // A whole number, a number or a text; numbers that aren't finite are left out.
    using Value = std::variant<std::uint64_t, double, std::wstring>;
    using Values = std::vector<std::pair<std::string, Value>>; // under names in UTF-8

    std::wstring name; // empty for none.  What isn't a character becomes U+FFFD
    Values values;     // the extras of the node
    Values measures;   // within these, under "massProperties"
};

// Tells facts.  It may throw, which ends the work.
class INodeFacts {
public:
    virtual ~INodeFacts() = default;
    // Of a source, for the first of its nodes on each way down from the root.
    virtual NodeFacts facts(Scene::INodeSource & source, bool isPart) = 0;

protected:
    INodeFacts() = default;
    INodeFacts(INodeFacts const &) = default;
    INodeFacts & operator=(INodeFacts const &) = default;
};

// A view that is in the file as a camera.
struct GltfView {
    std::wstring name; // as of NodeFacts
    View view;         // in the space of the document
};

// What a file is to be like.
struct GltfOptions {
    // The most bytes of a file: lengths are kept in 32 bits.
    static constexpr std::uint64_t c_mostBytes = std::numeric_limits<std::uint32_t>::max();

    bool binary = true; // as .glb; else as .gltf, with the meshes in a data URI
    // What is up in the document, and the direction in which its front is looked at: the model's
    // front faces the other way.  The axis of z is up if the first is zero or not finite.  A front
    // that is zero, not finite or along `up` is such that the model faces the axis of z, or that of
    // y if z is up or down.
    TgVector3d up{0, 0, 1};
    TgVector3d front{-1, 0, 0};
    std::vector<GltfView> views;           // those that makeFrame refuses are left out
    INodeFacts * facts = nullptr;          // null if there are none; not owned
    std::string generator;                 // the program that writes it, in UTF-8; empty for none
    std::uint64_t mostBytes = c_mostBytes; // less is for tests; more doesn't count
};

// A file, and what isn't in it.
struct GltfModel {
    std::string bytes;        // the whole file
    std::size_t parts = 0;    // places in which a mesh is shown
    std::size_t meshes = 0;   // different ones, by their numbers
    std::size_t leftOut = 0;  // visible meshes that can't be in the file, by their places
    std::size_t badViews = 0; // views that can't
};

// Makes a file of the graph below a group, or an empty one for null.  Unsupported if it would be
// larger than the limit, which is told before memory is taken for more than that.  `model` is
// changed only by success.  Throws std::bad_alloc if there is no memory, and what `facts` throws.
[[nodiscard]] VN_PICTURE_API Status makeGltf(Vrx::Graphics::GroupNode const * top,
                                             GltfOptions const & options, GltfModel & model);

} // namespace Vn::Picture

#endif
