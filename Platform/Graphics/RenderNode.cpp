#include "Platform/Graphics/RenderNode.h"

#include <algorithm>
#include <utility>

namespace Vrx::Graphics {

using Vn::StrongRef;

ARenderNode::~ARenderNode() = default;

Vn::StrongRefCreator<GroupNode> GroupNode::make() {
    return Vn::StrongRefCreator<GroupNode>(new GroupNode);
}

// A chain of groups that own each other ends group by group and not one within the other.
GroupNode::~GroupNode() {
    std::vector<StrongRef<ARenderNode>> ending = std::move(m_children);
    for (StrongRef<ARenderNode> const & child : ending) child->m_pParent = nullptr;
    while (!ending.empty()) {
        StrongRef<ARenderNode> const node = std::move(ending.back());
        ending.pop_back();
        auto * const group = dynamic_cast<GroupNode *>(node.get());
        if (!group || group->refCount() != 1) continue;
        for (StrongRef<ARenderNode> & child : group->m_children) {
            child->m_pParent = nullptr;
            ending.push_back(std::move(child));
        }
        group->m_children.clear();
    }
}

ARenderNode * GroupNode::child(std::size_t index) const noexcept {
    return index < m_children.size() ? m_children[index].get() : nullptr;
}

bool GroupNode::addChild(ARenderNode * node) {
    if (!node) return false;
    for (ARenderNode const * above = this; above; above = above->m_pParent)
        if (above == node) return false;
    StrongRef<ARenderNode> held(node);
    if (node->m_pParent) node->m_pParent->removeChild(node);
    m_children.push_back(std::move(held));
    node->m_pParent = this;
    return true;
}

bool GroupNode::removeChild(ARenderNode * node) {
    if (!node || node->m_pParent != this) return false;
    auto const place = std::find(m_children.begin(), m_children.end(), node);
    node->m_pParent = nullptr;
    m_children.erase(place);
    return true;
}

} // namespace Vrx::Graphics
