#include "Platform/Graphics/NodeWalk.h"

namespace Vrx::Graphics {

NodeWalk::NodeWalk(ARenderNode const * top) : m_pTop(top), m_pNode(top) {
    if (!top) return;
    if (top->parent()) m_above = top->parent()->effectiveEffect();
    for (GroupNode const * group = top->parent(); group; group = group->parent())
        if (group->transform()) m_place = *group->transform() * m_place;
    enter();
}

std::optional<EffectParams> NodeWalk::effect() const noexcept {
    return m_effects.empty() ? m_above : std::optional(m_effects.back().params);
}

TgMatrix3d const & NodeWalk::transform() const noexcept {
    return m_places.empty() ? m_place : m_places.back().transform;
}

void NodeWalk::enter() {
    GroupNode const * const group = m_pNode->asGroup();
    if (group && group->transform())
        m_places.push_back({m_depth, transform() * *group->transform()});
    EffectParams const * const own = m_pNode->effect();
    if (!own) return;
    std::optional<EffectParams> const inherited = effect();
    if (!inherited || !inherited->overrides) m_effects.push_back({m_depth, *own});
}

void NodeWalk::advance(bool down) {
    if (!m_pNode) return;
    GroupNode const * const group = down ? m_pNode->asGroup() : nullptr;
    if (group && group->firstChild()) {
        m_pNode = group->firstChild();
        ++m_depth;
    } else {
        while (m_pNode != m_pTop && !m_pNode->next()) {
            m_pNode = m_pNode->parent();
            --m_depth;
        }
        m_pNode = m_pNode == m_pTop ? nullptr : m_pNode->next();
        if (!m_pNode) m_depth = 0;
        while (!m_effects.empty() && (!m_pNode || m_effects.back().depth >= m_depth))
            m_effects.pop_back();
        while (!m_places.empty() && (!m_pNode || m_places.back().depth >= m_depth))
            m_places.pop_back();
    }
    if (m_pNode) enter();
}

ARenderNode const * nodeAfter(ARenderNode const & node, ARenderNode const & top) noexcept {
    GroupNode const * const group = node.asGroup();
    if (group && group->firstChild()) return group->firstChild();
    ARenderNode const * last = &node;
    while (last != &top && !last->next()) last = last->parent();
    return last == &top ? nullptr : last->next();
}

} // namespace Vrx::Graphics
