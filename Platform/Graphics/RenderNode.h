// The nodes of the render graph.

#ifndef VN_PLATFORM_GRAPHICS_RENDERNODE_H
#define VN_PLATFORM_GRAPHICS_RENDERNODE_H

#include <cstddef>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/Export.h"

namespace Vrx::Graphics {

class GroupNode;

// Something that is drawn.  A node stands in at most one group, which owns it.
class VRX_API ARenderNode : public Vn::RefCounted {
public:
    ~ARenderNode() override;
    ARenderNode(ARenderNode const &) = delete;
    ARenderNode & operator=(ARenderNode const &) = delete;

    // The group in which the node stands; null if there is none.
    GroupNode * parent() const noexcept { return m_pParent; }

protected:
    ARenderNode() noexcept = default;

private:
    friend class GroupNode;

    GroupNode * m_pParent = nullptr;
};

// A node that draws its children, in their order.
class VRX_API GroupNode : public ARenderNode {
public:
    // An empty group.
    static Vn::StrongRefCreator<GroupNode> make();
    // Lets go of the children, which then stand in no group.
    ~GroupNode() override;

    // The number of children, and each of them; null for a bad index.
    std::size_t children() const noexcept { return m_children.size(); }
    ARenderNode * child(std::size_t index) const noexcept;

    // Puts a node after the other children, and takes it out of the group in which it was.
    // Refused, with false, for null, for this group itself, and for a group in which this one
    // stands.
    bool addChild(ARenderNode * node);
    // Takes a child out.  False if it is none.
    bool removeChild(ARenderNode * node);

private:
    GroupNode() noexcept = default;

    std::vector<Vn::StrongRef<ARenderNode>> m_children;
};

} // namespace Vrx::Graphics

#endif
