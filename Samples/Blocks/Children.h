// How the nodes of a group follow its list of children.

#ifndef VN_SAMPLES_BLOCKS_CHILDREN_H
#define VN_SAMPLES_BLOCKS_CHILDREN_H

#include <vector>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/Scene/NodeChange.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::Blocks {

// The children of a group, as a list of their own.
using Children = std::vector<StrongRef<Managed::ManagedEntity>>;

// What happened to the list of a group within a change, told after the change.
struct ChildrenChange {
    Children gone;        // no longer listed
    Children came;        // to stand after all the others, in this order
    bool isWhole = false; // whether `came` is the whole list
    // Of a change that isn't a replay: the child that is listed now; null if none is.
    StrongRef<Managed::ManagedEntity> listed;

    // Of a change that isn't a replay, by its details; nothing if they aren't about the list.
    // Observers were told before, and may have changed the list once more: what is told is how it
    // is by now.
    static ChildrenChange direct(Managed::ManagedGroupEntity const & group, DataChange * details);
    // Of a replay, which tells no details: by the list as it was before.
    static ChildrenChange replayed(Managed::ManagedGroupEntity const & group,
                                   Children const & before);

    // Has the nodes of those children that are a `Source` follow, in the group that shows them.
    template <class Source>
    void follow(Scene::NodeChange & group) const {
        for (StrongRef<Managed::ManagedEntity> const & child : gone)
            if (auto const * const source = query<Source>(child.get()))
                group.removeChild(source->renderNode());
        for (StrongRef<Managed::ManagedEntity> const & child : came)
            if (auto const * const source = query<Source>(child.get()))
                group.addChild(source->renderNode());
    }
};

} // namespace Vn::Blocks

#endif
