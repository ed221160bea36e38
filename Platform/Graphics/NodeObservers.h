// Who is told which nodes changed.

#ifndef VN_PLATFORM_GRAPHICS_NODEOBSERVERS_H
#define VN_PLATFORM_GRAPHICS_NODEOBSERVERS_H

#include <cstddef>
#include <span>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/Export.h"
#include "Platform/Graphics/RenderNode.h"

namespace Vrx::Graphics {

// What changed in a node, as bits of a mask.  The numbers are passed between modules.
enum EChangeType {
    ChangeNothing = 0,
    ChangeGeometry = 1,    // the meshes of a geometry node
    ChangeEffect = 2,      // its effect, and so how it and what is below it looks
    ChangeChildren = 4,    // a child of the group came, went or stands in another place
    ChangePlace = 8,       // the node came or was moved, or what is in the group was
    ChangeVisibility = 16, // whether it is drawn
    ChangeAll = 0xFFFF     // everything in the node and below it may differ
};

// A node, and what changed in it.
class ChangedNode {
public:
    // The node, which lives as long as it is told of.
    ARenderNode * node() const noexcept { return m_rNode.get(); }
    // Bits of EChangeType.
    int changes() const noexcept { return m_changes; }

private:
    friend class NodeChanges;

    Vn::StrongRef<ARenderNode> m_rNode;
    int m_changes = ChangeNothing;
    bool m_bResolved = false;
    Vn::StrongRef<NodeObservers> m_rObservers; // once that is resolved
};

// Is told of the changes in a graph.
class VRX_API INodeObserver {
public:
    virtual ~INodeObserver();
    // These nodes have changed: each stands there once, in the order in which the changes were
    // told.  What an observer throws is dropped.
    virtual void nodesChanged(std::span<ChangedNode const> nodes) = 0;
};

// The observers of a graph.  They may subscribe and unsubscribe while they are told: who comes
// hears from the next time on, who goes hears no more.
class VRX_API NodeObservers : public Vn::RefCounted {
public:
    // Without observers.
    static Vn::StrongRefCreator<NodeObservers> make();
    ~NodeObservers() override;

    // Has an observer told, which isn't owned, once even if it comes twice.  A null one is ignored.
    void subscribe(INodeObserver * observer);
    void unsubscribe(INodeObserver * observer) noexcept;
    // How many there are.
    std::size_t observers() const noexcept;

protected:
    NodeObservers() noexcept = default;

private:
    friend class NodeChanges;

    void tell(std::span<ChangedNode const> nodes) noexcept;

    std::vector<INodeObserver *> m_observers; // null where one unsubscribed while being told
    std::size_t m_telling = 0;
};

// Collects which nodes changed, and tells them once, to the observers of the nearest group that has
// some: the node itself or one above it.  A node that stands in no such group is told to nobody.
// Costs the way up from the nodes to these groups, each part of which is gone once.
class VRX_API NodeChanges {
public:
    NodeChanges() noexcept = default;
    NodeChanges(NodeChanges const &) = delete;
    NodeChanges & operator=(NodeChanges const &) = delete;
    // What wasn't told is forgotten.
    ~NodeChanges();

    // Whether there is an observer in the process, without which nothing needs to be collected.
    static bool anybodyListens() noexcept;

    // Makes room for that many notes, so that these are taken without fail.
    void reserve(std::size_t notes);
    // Notes a change, as bits of EChangeType.  Ignored for null, and where there is no room.
    void note(ARenderNode * node, int changes) noexcept;
    // Tells by how the graph is now, and forgets.  The graph may be changed by those that are told.
    void tell() noexcept;

private:
    void resolve(ChangedNode & change) noexcept;
    void forgetNotes() noexcept;

    std::vector<ChangedNode> m_changes;
};

} // namespace Vrx::Graphics

#endif
