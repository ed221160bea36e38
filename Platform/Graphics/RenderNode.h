// The nodes of the render graph.
//
// A graph is a tree: a node stands in at most one group, which owns it.  What equal parts share is
// not the node but the mesh.  Nodes are counted: who holds one keeps it, and all below it, after
// the graph is gone.  The links stand in the nodes, so that adding a child, taking one out and
// going on to the next cost the same in a group of any size, and can't fail for want of memory.
//
// A graph belongs to one thread at a time.  The operations that change it at once are for building;
// a graph that others see is changed by a Vn::Scene::NodeChange, since nobody is told otherwise.

#ifndef VN_PLATFORM_GRAPHICS_RENDERNODE_H
#define VN_PLATFORM_GRAPHICS_RENDERNODE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "Platform/Base/RefCounted.h"
#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/EffectParams.h"
#include "Platform/Graphics/Export.h"
#include "Platform/Graphics/WorldType.h"

namespace Vrx::Graphics {

class GroupNode;
class LODGeometryNode;
class NodeChanges;
class NodeObservers;

// Something that is drawn.  There are two kinds: groups and geometry.
class VRX_API ARenderNode : public Vn::RefCounted {
public:
    ~ARenderNode() override;
    ARenderNode(ARenderNode const &) = delete;
    ARenderNode & operator=(ARenderNode const &) = delete;

    // This node as one of its kind; null if it is of the other.
    GroupNode * asGroup() noexcept;
    GroupNode const * asGroup() const noexcept;
    LODGeometryNode * asGeometry() noexcept;
    LODGeometryNode const * asGeometry() const noexcept;

    // The group in which the node stands; null if there is none.
    GroupNode * parent() const noexcept { return m_pParent; }
    // The neighbours in that group; null at its ends.
    ARenderNode * previous() const noexcept { return m_pPrevious; }
    ARenderNode * next() const noexcept { return m_rNext.get(); }

    // Whether it is drawn at all, with what is below it; true unless it was made otherwise.
    bool visible() const noexcept { return m_bVisible; }
    void visible(bool visible) noexcept { m_bVisible = visible; }

    // The effect that was given to this node; null if none was.
    EffectParams const * effect() const noexcept { return m_effect ? &*m_effect : nullptr; }
    void effect(std::optional<EffectParams> const & effect) noexcept { m_effect = effect; }
    // The effect in which the node shows: the uppermost one that overrides, else its own, else that
    // of the nearest group with one.  Nothing if there is none.  Costs the way to the top; whoever
    // goes over many nodes asks a NodeWalk.
    std::optional<EffectParams> effectiveEffect() const noexcept;
    // The color of that effect.
    std::optional<Vn::Color> effectiveColor() const noexcept;

    // What the node was made for, kept for whoever made it; null if there is nothing.  Scenes keep
    // here the way to the source of the node.
    Vn::RefCounted * tag() const noexcept { return m_rTag.get(); }
    void tag(Vn::StrongRef<Vn::RefCounted> tag) noexcept { m_rTag.swap(tag); }

private:
    friend class GroupNode;
    friend class LODGeometryNode;
    friend class NodeChanges;

    enum EKind : std::uint8_t { KindGroup, KindGeometry };

    explicit ARenderNode(EKind kind) noexcept : m_kind(kind) {}

    // Where in a list of changes the node stands, counted from 1; 0 but while one is told.
    std::uint32_t m_note = 0;
    EKind const m_kind;
    bool m_bVisible = true;
    GroupNode * m_pParent = nullptr;
    ARenderNode * m_pPrevious = nullptr;
    Vn::StrongRef<ARenderNode> m_rNext;
    Vn::StrongRef<Vn::RefCounted> m_rTag;
    std::optional<EffectParams> m_effect;
};

// A node that draws its children, in their order.
class VRX_API GroupNode final : public ARenderNode {
public:
    // An empty group.
    static Vn::StrongRefCreator<GroupNode> make(Scene::EWorldType world = Scene::WorldModel,
                                                bool selectable = true);
    // Lets go of the children, which then stand in no group.
    ~GroupNode() override;

    // What `make` was given.
    Scene::EWorldType world() const noexcept { return m_world; }
    bool selectable() const noexcept { return m_bSelectable; }

    // How what is in the group is placed in the space of the group above, or of the document: the
    // map of its positions, in cm.  Null if it is placed as it is, which it is at first.
    TgMatrix3d const * transform() const noexcept { return m_pTransform.get(); }
    void transform(std::unique_ptr<TgMatrix3d const> transform) noexcept {
        m_pTransform = std::move(transform);
    }

    // The number of children, and the ends of their row; null if there are none.
    std::size_t children() const noexcept { return m_children; }
    ARenderNode * firstChild() const noexcept { return m_rFirst.get(); }
    ARenderNode * lastChild() const noexcept { return m_pLast; }
    // A child by its place; null for a bad one.  Costs the way from the nearer end: a walk over the
    // children goes by `next`.
    ARenderNode * child(std::size_t index) const noexcept;

    // Puts a node in front of a child, or after all of them for null, and takes it out of the group
    // in which it was, which may be this one.  Refused, with false, for null, for this group
    // itself, for a group in which this one stands, and in front of a node that is no child of this
    // group.  The look for a circle costs the height above this group or the number of nodes in the
    // other, whichever is less.
    bool addChild(ARenderNode * node, ARenderNode * before = nullptr) noexcept;
    // Takes a child out.  False if it is none.
    bool removeChild(ARenderNode * node) noexcept;

    // Who is told what changes in this group and below it; null if nobody is.
    NodeObservers * observers() const noexcept { return m_rObservers.get(); }
    void observers(Vn::StrongRef<NodeObservers> observers) noexcept;

private:
    GroupNode(Scene::EWorldType world, bool selectable) noexcept;

    bool standsBelow(ARenderNode const & node) const noexcept;
    Vn::StrongRef<ARenderNode> unlink(ARenderNode & node) noexcept;
    void link(Vn::StrongRef<ARenderNode> node, ARenderNode * before) noexcept;

    bool const m_bSelectable;
    Scene::EWorldType const m_world;
    std::size_t m_children = 0;
    Vn::StrongRef<ARenderNode> m_rFirst;
    ARenderNode * m_pLast = nullptr;
    std::unique_ptr<TgMatrix3d const> m_pTransform;
    Vn::StrongRef<NodeObservers> m_rObservers;
};

} // namespace Vrx::Graphics

#endif
