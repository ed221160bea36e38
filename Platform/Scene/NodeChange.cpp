#include "Platform/Scene/NodeChange.h"

#include <exception>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "Platform/Scene/INodeSource.h"
#include "Platform/Scene/SceneRootInternal.h"

namespace Vn::Scene {

using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::EffectParams;
using Vrx::Graphics::GroupNode;
using Vrx::Graphics::LODGeometryNode;
using Vrx::Graphics::NodeChanges;

namespace {

// The bracket that was opened last by this thread and isn't closed.
constinit thread_local NodeChange * s_pInnermost = nullptr;

// What a bracket may be told.  Each makes its change of the graph, and notes which nodes it really
// changed.

struct KeepNode {
    StrongRef<ARenderNode> node;

    void make(NodeChanges &, bool) noexcept {}
};

struct AddChild {
    StrongRef<GroupNode> group;
    StrongRef<ARenderNode> child;
    StrongRef<ARenderNode> before;

    void make(NodeChanges & changes, bool silent) noexcept {
        GroupNode * const former = child->parent();
        ARenderNode const * const next = child->next();
        if (!group->addChild(child.get(), before.get())) return;
        if (silent || (former == group.get() && child->next() == next)) return;
        changes.note(former, Vrx::Graphics::ChangeChildren);
        changes.note(group.get(), Vrx::Graphics::ChangeChildren);
        changes.note(child.get(), Vrx::Graphics::ChangePlace);
    }
};

struct RemoveChild {
    StrongRef<GroupNode> group;
    StrongRef<ARenderNode> child;

    void make(NodeChanges & changes, bool silent) noexcept {
        if (group->removeChild(child.get()) && !silent)
            changes.note(group.get(), Vrx::Graphics::ChangeChildren);
    }
};

struct SetGeometry {
    StrongRef<LODGeometryNode> node;
    StrongRef<Vrx::Devices::SimpleMesh> mesh;
    int levels;

    void make(NodeChanges & changes, bool silent) noexcept {
        bool differs = false;
        for (unsigned level = 0; level < LODGeometryNode::c_levels; ++level)
            differs = differs || ((levels & (1 << level)) && mesh != node->mesh(level));
        node->geometry(mesh.get(), levels);
        if (differs && !silent) changes.note(node.get(), Vrx::Graphics::ChangeGeometry);
    }
};

struct SetEffect {
    StrongRef<ARenderNode> node;
    std::optional<EffectParams> effect;

    void make(NodeChanges & changes, bool silent) noexcept {
        EffectParams const * const former = node->effect();
        bool const differs = former ? effect != *former : effect.has_value();
        node->effect(effect);
        if (differs && !silent) changes.note(node.get(), Vrx::Graphics::ChangeEffect);
    }
};

struct SetVisible {
    StrongRef<ARenderNode> node;
    bool visible;

    void make(NodeChanges & changes, bool silent) noexcept {
        bool const differs = node->visible() != visible;
        node->visible(visible);
        if (differs && !silent) changes.note(node.get(), Vrx::Graphics::ChangeVisibility);
    }
};

struct SetTransform {
    StrongRef<GroupNode> group;
    std::unique_ptr<TgMatrix3d const> transform; // null for the one that changes nothing

    void make(NodeChanges & changes, bool silent) noexcept {
        TgMatrix3d const * const former = group->transform();
        bool const differs = former && transform ? *former != *transform : (former || transform);
        group->transform(std::move(transform));
        if (differs && !silent) changes.note(group.get(), Vrx::Graphics::ChangePlace);
    }
};

struct Invalidate {
    StrongRef<ARenderNode> node;
    int changes;

    void make(NodeChanges & noted, bool silent) noexcept {
        if (!silent) noted.note(node.get(), changes);
    }
};

// The one that is made when it is told, and taken back if it is dropped.
struct ShowRoot {
    StrongRef<SceneRoot> scene;
    StrongRef<GroupNode> root;
    StrongRef<GroupNode> former;

    void make(NodeChanges & changes, bool silent) noexcept {
        if (!silent) changes.note(root.get(), Vrx::Graphics::ChangeAll);
    }
};

// The most nodes that one of them notes.
constexpr std::size_t c_mostNotes = 3;

} // namespace

struct NodeChange::Edit {
    template <class What>
    Edit(What && whatIsTold, bool isSilent) noexcept
        : what(std::forward<What>(whatIsTold)), silent(isSilent) {}

    std::variant<KeepNode, AddChild, RemoveChild, SetGeometry, SetEffect, SetVisible, SetTransform,
                 Invalidate, ShowRoot>
        what;
    bool silent;
};

NodeChange::NodeChange(ARenderNode * node, bool silent) noexcept
    : m_pEnclosing(s_pInnermost), m_outermost(m_pEnclosing ? m_pEnclosing->m_outermost : *this),
      m_exceptions(std::uncaught_exceptions()), m_bSilent(silent),
      m_begin(m_pEnclosing ? m_outermost.m_edits.size() : 0), m_rNode(node) {
    s_pInnermost = this;
}

NodeChange::~NodeChange() {
    s_pInnermost = m_pEnclosing;
    if (std::uncaught_exceptions() > m_exceptions)
        drop();
    else if (!m_pEnclosing)
        make();
}

void NodeChange::make() noexcept {
    if (m_edits.empty()) return;
    for (Edit & edit : m_edits)
        std::visit([&](auto & what) { what.make(m_changes, edit.silent); }, edit.what);
    m_changes.tell();
}

void NodeChange::drop() noexcept {
    std::vector<Edit> & edits = m_outermost.m_edits;
    while (edits.size() > m_begin) {
        if (auto * const shown = std::get_if<ShowRoot>(&edits.back().what))
            shown->scene->root(std::move(shown->former));
        edits.pop_back();
    }
}

template <class What>
void NodeChange::tell(What && what) {
    std::vector<Edit> & edits = m_outermost.m_edits;
    if (NodeChanges::anybodyListens())
        m_outermost.m_changes.reserve(c_mostNotes * (edits.size() + 1));
    edits.emplace_back(std::forward<What>(what), m_bSilent);
}

GroupNode * NodeChange::createGroupNode(INodeSource * source, int world, bool selectable,
                                        bool visible) {
    StrongRef<GroupNode> node =
        GroupNode::make(static_cast<Vrx::Scene::EWorldType>(world), selectable);
    GroupNode * const made = node.get();
    takeMade(std::move(node), source, visible);
    return made;
}

LODGeometryNode * NodeChange::createLODGeometryNode(INodeSource * source, bool visible) {
    StrongRef<LODGeometryNode> node = LODGeometryNode::make();
    LODGeometryNode * const made = node.get();
    takeMade(std::move(node), source, visible);
    return made;
}

void NodeChange::takeMade(StrongRef<ARenderNode> node, INodeSource * source, bool visible) {
    if (source) node->tag(source->tag());
    node->visible(visible);
    if (m_bMade) tell(KeepNode{m_rNode});
    m_rNode = std::move(node);
    m_bMade = true;
}

bool NodeChange::geometry(Vrx::Devices::SimpleMesh * mesh, int levels) {
    StrongRef<Vrx::Devices::SimpleMesh> held(mesh);
    LODGeometryNode * const node = m_rNode ? m_rNode->asGeometry() : nullptr;
    if (!node) return false;
    tell(SetGeometry{StrongRef<LODGeometryNode>(node), std::move(held), levels});
    return true;
}

bool NodeChange::colorEffect(Color const & color, bool overrides, unsigned char layer) {
    if (!m_rNode) return false;
    tell(SetEffect{m_rNode, EffectParams(color, overrides, layer)});
    return true;
}

bool NodeChange::removeEffect() {
    if (!m_rNode) return false;
    tell(SetEffect{m_rNode, std::nullopt});
    return true;
}

bool NodeChange::transform(TgMatrix3d const & transform) {
    GroupNode * const group = m_rNode ? m_rNode->asGroup() : nullptr;
    if (!group) return false;
    std::unique_ptr<TgMatrix3d const> kept;
    if (transform != TgMatrix3d::kIdentity) kept = std::make_unique<TgMatrix3d const>(transform);
    tell(SetTransform{StrongRef<GroupNode>(group), std::move(kept)});
    return true;
}

bool NodeChange::visible(bool visible) {
    if (!m_rNode) return false;
    tell(SetVisible{m_rNode, visible});
    return true;
}

bool NodeChange::addChild(ARenderNode * node) { return insertChild(node, nullptr); }

bool NodeChange::insertChild(ARenderNode * node, ARenderNode * before) {
    GroupNode * const group = m_rNode ? m_rNode->asGroup() : nullptr;
    if (!group || !node) return false;
    tell(AddChild{StrongRef<GroupNode>(group), StrongRef<ARenderNode>(node),
                  StrongRef<ARenderNode>(before)});
    return true;
}

bool NodeChange::removeChild(ARenderNode * node) {
    GroupNode * const group = m_rNode ? m_rNode->asGroup() : nullptr;
    if (!group || !node) return false;
    tell(RemoveChild{StrongRef<GroupNode>(group), StrongRef<ARenderNode>(node)});
    return true;
}

bool NodeChange::invalidate(int changes) {
    if (!m_rNode) return false;
    tell(Invalidate{m_rNode, changes});
    return true;
}

void NodeChange::showRoot(SceneRoot & scene, GroupNode * root) {
    StrongRef<GroupNode> const shown(root);
    tell(ShowRoot{StrongRef<SceneRoot>(&scene), shown, StrongRef<GroupNode>(scene.root())});
    scene.root(shown);
}

} // namespace Vn::Scene
