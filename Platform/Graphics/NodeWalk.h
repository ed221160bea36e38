// The way over a graph.

#ifndef VN_PLATFORM_GRAPHICS_NODEWALK_H
#define VN_PLATFORM_GRAPHICS_NODEWALK_H

#include <cstddef>
#include <optional>
#include <vector>

#include "Platform/Graphics/Export.h"
#include "Platform/Graphics/RenderNode.h"

namespace Vrx::Graphics {

// Goes over a node and all below it, each before its children and these in their order:
//
//     for (NodeWalk walk(root); walk; walk.next()) draw(*walk.node(), walk.effect());
//
// Costs the same for each node, and takes memory only for the effects and transforms
// on the way.  The graph must
// not change meanwhile, and isn't owned.
class VRX_API NodeWalk {
public:
    // Begins at a node; null is a walk that is over.
    explicit NodeWalk(ARenderNode const * top);

    // Whether the walk stands at a node.
    explicit operator bool() const noexcept { return m_pNode != nullptr; }
    // The node; null once the walk is over.
    ARenderNode const * node() const noexcept { return m_pNode; }
    // How many groups stand above it in this walk: 0 at the top.
    std::size_t depth() const noexcept { return m_depth; }
    // As ARenderNode::effectiveEffect of the node, what stands above the top included.
    std::optional<EffectParams> effect() const noexcept;
    // How positions in the node are placed in the document: what GroupNode::transform of the node
    // and of all groups above it make together, what stands above the top included.  The map that
    // changes nothing if none of them has one.
    TgMatrix3d const & transform() const noexcept;

    // Goes on, with or without the nodes below this one.  Nothing happens once the walk is over.
    void next() { advance(true); }
    void skip() { advance(false); }

private:
    struct Effect {
        std::size_t depth; // of the node from which it holds
        EffectParams params;
    };

    struct Place {
        std::size_t depth; // of the group from which it holds
        TgMatrix3d transform;
    };

    void advance(bool down);
    void enter();

    ARenderNode const * const m_pTop;
    ARenderNode const * m_pNode;
    std::size_t m_depth = 0;
    std::optional<EffectParams> m_above; // what the top inherits
    std::vector<Effect> m_effects;       // of the node and those above it, the nearest last
    TgMatrix3d m_place;                  // of what stands above the top
    std::vector<Place> m_places;         // as m_effects
};

// The node after another in a walk below `top`; null at its end.  For walks that need no more.
VRX_API ARenderNode const * nodeAfter(ARenderNode const & node, ARenderNode const & top) noexcept;

} // namespace Vrx::Graphics

#endif
