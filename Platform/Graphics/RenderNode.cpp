#include "Platform/Graphics/RenderNode.h"

#include <utility>

#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/NodeObservers.h"
#include "Platform/Graphics/NodeWalk.h"

namespace Vrx::Graphics {

using Vn::StrongRef;

ARenderNode::~ARenderNode() = default;

GroupNode * ARenderNode::asGroup() noexcept {
    return m_kind == KindGroup ? static_cast<GroupNode *>(this) : nullptr;
}
GroupNode const * ARenderNode::asGroup() const noexcept {
    return m_kind == KindGroup ? static_cast<GroupNode const *>(this) : nullptr;
}
LODGeometryNode * ARenderNode::asGeometry() noexcept {
    return m_kind == KindGeometry ? static_cast<LODGeometryNode *>(this) : nullptr;
}
LODGeometryNode const * ARenderNode::asGeometry() const noexcept {
    return m_kind == KindGeometry ? static_cast<LODGeometryNode const *>(this) : nullptr;
}

std::optional<EffectParams> ARenderNode::effectiveEffect() const noexcept {
    EffectParams const * found = nullptr;
    for (ARenderNode const * node = this; node; node = node->m_pParent)
        if (EffectParams const * const effect = node->effect())
            if (!found || effect->overrides) found = effect;
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<Vn::Color> ARenderNode::effectiveColor() const noexcept {
    std::optional<EffectParams> const effect = effectiveEffect();
    return effect ? std::optional(effect->color) : std::nullopt;
}

GroupNode::GroupNode(Scene::EWorldType world, bool selectable) noexcept
    : ARenderNode(KindGroup), m_bSelectable(selectable), m_world(world) {}

Vn::StrongRefCreator<GroupNode> GroupNode::make(Scene::EWorldType world, bool selectable) {
    return Vn::StrongRefCreator<GroupNode>(new GroupNode(world, selectable));
}

// One node ends after the other, and not one within the other: a group that ends hands its children
// to the row of those that are to end.
GroupNode::~GroupNode() {
    StrongRef<ARenderNode> ending = std::move(m_rFirst);
    while (ending) {
        StrongRef<ARenderNode> const node = std::exchange(ending, nullptr);
        ending = std::move(node->m_rNext);
        node->m_pParent = nullptr;
        node->m_pPrevious = nullptr;
        GroupNode * const group = node->asGroup();
        if (!group || !group->m_rFirst || group->refCount() != 1) continue;
        group->m_pLast->m_rNext = std::move(ending);
        ending = std::move(group->m_rFirst);
        group->m_pLast = nullptr;
        group->m_children = 0;
    }
}

ARenderNode * GroupNode::child(std::size_t index) const noexcept {
    if (index >= m_children) return nullptr;
    ARenderNode * node = nullptr;
    if (index < m_children / 2) {
        node = m_rFirst.get();
        for (; index > 0; --index) node = node->next();
    } else {
        node = m_pLast;
        for (index = m_children - 1 - index; index > 0; --index) node = node->previous();
    }
    return node;
}

// Goes up from here and down through the other at once, and ends with whichever ends first.
bool GroupNode::standsBelow(ARenderNode const & node) const noexcept {
    GroupNode const * const group = node.asGroup();
    if (!group || !group->m_rFirst) return this == &node;
    ARenderNode const * below = &node;
    for (ARenderNode const * above = this; above && below; above = above->m_pParent) {
        if (above == &node || below == this) return true;
        below = nodeAfter(*below, node);
    }
    return false;
}

StrongRef<ARenderNode> GroupNode::unlink(ARenderNode & node) noexcept {
    StrongRef<ARenderNode> & owner = node.m_pPrevious ? node.m_pPrevious->m_rNext : m_rFirst;
    StrongRef<ARenderNode> taken = std::move(owner);
    owner = std::move(node.m_rNext);
    (owner ? owner->m_pPrevious : m_pLast) = node.m_pPrevious;
    node.m_pPrevious = nullptr;
    node.m_pParent = nullptr;
    --m_children;
    return taken;
}

void GroupNode::link(StrongRef<ARenderNode> node, ARenderNode * before) noexcept {
    ARenderNode * const previous = before ? before->m_pPrevious : m_pLast;
    StrongRef<ARenderNode> & owner = previous ? previous->m_rNext : m_rFirst;
    node->m_pParent = this;
    node->m_pPrevious = previous;
    node->m_rNext = std::move(owner);
    (before ? before->m_pPrevious : m_pLast) = node.get();
    owner = std::move(node);
    ++m_children;
}

bool GroupNode::addChild(ARenderNode * node, ARenderNode * before) noexcept {
    if (!node || standsBelow(*node)) return false;
    if (before && before->m_pParent != this) return false;
    if (before == node) return true; // it stands there already
    link(node->m_pParent ? node->m_pParent->unlink(*node) : StrongRef<ARenderNode>(node), before);
    return true;
}

bool GroupNode::removeChild(ARenderNode * node) noexcept {
    if (!node || node->m_pParent != this) return false;
    unlink(*node);
    return true;
}

void GroupNode::observers(StrongRef<NodeObservers> observers) noexcept {
    m_rObservers.swap(observers);
}

} // namespace Vrx::Graphics
