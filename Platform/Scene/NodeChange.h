// The bracket around a change of the render graph.
//
// What is told within a bracket is kept, and made when the bracket closes: all of it, in the order
// in which it was told, or nothing.  Until then the graph is what it was for all that look at it.
//
// - A bracket that an exception leaves is dropped: what it was told is never made.  The exception
//   of an operation of the bracket itself leaves what was told before; a caller that catches it
//   within the bracket has that made.
// - Brackets nest, on one node and across nodes, in the thread that opens them.  What an inner one
//   was told is a part of the outer one: made when the outermost closes, in the order in which all
//   of it was told, and dropped with it.  An inner one that is dropped takes nothing else along.
// - Closing needs no memory and doesn't fail; what may fail is telling.
// - Observers are told once, after the outermost bracket has closed.  They may open others, which
//   are made, and told, at once.
// - What has no meaning is left out when its turn comes, and the rest is made: a node that would
//   come to stand below itself, a child that has left the group meanwhile.

#ifndef VN_PLATFORM_SCENE_NODECHANGE_H
#define VN_PLATFORM_SCENE_NODECHANGE_H

#include <cstddef>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/NodeObservers.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Scene/Export.h"
#include "Platform/Types/Color.h"

namespace Vn::Scene {

class INodeSource;
class SceneRoot;

// A local object that stands around changes of one node, which is given to it or which it makes:
//
//     NodeChange change(group, false);
//     change.addChild(node);
//     change.colorEffect(Color(1, 0, 0, 1), false, 0);
//
// The operations give false, and nothing is told, if the bracket has no node or one of the other
// kind.  Each throws std::bad_alloc if there is no memory to keep what is told.
class VN_SCENE_API NodeChange {
public:
    // A bracket without a node, until it makes one.
    NodeChange() noexcept : NodeChange(nullptr, false) {}
    // A bracket on a node, which may be null.  Observers don't learn what a silent one is told.
    NodeChange(Vrx::Graphics::ARenderNode * node, bool silent) noexcept;
    ~NodeChange();
    NodeChange(NodeChange const &) = delete;
    NodeChange & operator=(NodeChange const &) = delete;

    // The node that is changed, owned by the bracket until that closes; null if there is none.
    Vrx::Graphics::ARenderNode * node() const noexcept { return m_rNode.get(); }

    // Makes a node, to which what follows is told.  It stands in no group, and lasts with the
    // bracket unless it is referred to, or told, elsewhere.  `source` is the one for which it
    // stands, and may be null.  `world` is a number of Vrx::Scene::EWorldType.
    Vrx::Graphics::GroupNode * createGroupNode(INodeSource * source, int world, bool selectable,
                                               bool visible);
    Vrx::Graphics::LODGeometryNode * createLODGeometryNode(INodeSource * source, bool visible);

    // Gives the node a mesh, which may be null, for levels of detail: a mask of
    // Vrx::Graphics::ELevel.
    bool geometry(Vrx::Devices::SimpleMesh * mesh, int levels);
    // Gives the node an effect, as Vrx::Graphics::EffectParams tells, or takes it away.
    bool colorEffect(Color const & color, bool overrides, unsigned char layer);
    bool removeEffect();
    // Has the node drawn or not.
    bool visible(bool visible);
    // Places what is in the group; the map that changes nothing takes the place away.
    bool transform(TgMatrix3d const & transform);

    // Puts a node after the other children, or in front of one of them, and takes it out of the
    // group in which it is.  So a node that is added twice stands once, where it was added last.  A
    // null child is refused; a null `before` stands for the end.
    bool addChild(Vrx::Graphics::ARenderNode * node);
    bool insertChild(Vrx::Graphics::ARenderNode * node, Vrx::Graphics::ARenderNode * before);
    // Takes a child out.  A null one is refused.
    bool removeChild(Vrx::Graphics::ARenderNode * node);

    // Tells observers that the node has changed, though the graph doesn't know how: bits of
    // Vrx::Graphics::EChangeType.
    bool invalidate(int changes);

private:
    friend class SceneAssetAdapter;
    struct Edit;

    // Has a scene show another root from now on.  It shows the former again if this is dropped.
    void showRoot(SceneRoot & scene, Vrx::Graphics::GroupNode * root);
    void takeMade(StrongRef<Vrx::Graphics::ARenderNode> node, INodeSource * source, bool visible);
    template <class What>
    void tell(What && what);
    void make() noexcept;
    void drop() noexcept;

    NodeChange * const m_pEnclosing; // the bracket that was innermost before; null if there is none
    NodeChange & m_outermost;
    int const m_exceptions; // under way when the bracket opened
    bool const m_bSilent;
    bool m_bMade = false;      // the node was made by this bracket
    std::size_t const m_begin; // where in the list the first edit of this bracket stands
    StrongRef<Vrx::Graphics::ARenderNode> m_rNode;
    // Of the outermost bracket alone: what it and those within it were told, and room for what
    // observers learn.
    std::vector<Edit> m_edits;
    Vrx::Graphics::NodeChanges m_changes;
};

} // namespace Vn::Scene

#endif
