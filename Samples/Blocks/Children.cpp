#include "Samples/Blocks/Children.h"

#include <algorithm>
#include <unordered_set>

#include "Platform/Base/InterfaceId.h"
#include "Server/CommonData/Managed/ManagedGroupEntityChangeDetails.h"

namespace Vn::Blocks {

using Managed::ManagedEntity;
using Managed::ManagedGroupEntity;
using Details = Managed::ManagedGroupEntityChangeDetails;

namespace {

bool lists(ManagedGroupEntity const & group, StrongRef<ManagedEntity> const & child) {
    Children const & children = group.childrenVector();
    return std::find(children.begin(), children.end(), child) != children.end();
}

} // namespace

ChildrenChange ChildrenChange::direct(ManagedGroupEntity const & group, DataChange * details) {
    ChildrenChange change;
    auto const * const known =
        details ? static_cast<Details const *>(details->find(Details::interfaceId())) : nullptr;
    if (!known || !known->managedEntity()) return change;
    StrongRef<ManagedEntity> const & child = known->managedEntity();
    bool const isLast = group.children() && group.childrenVector().back() == child;
    if (!isLast && !lists(group, child)) {
        change.gone.push_back(child);
    } else if (known->changeType() != Details::ChildRemoved) {
        change.listed = child;
        change.isWhole = !isLast;
        change.came = isLast ? Children{child} : group.childrenVector();
    }
    return change;
}

ChildrenChange ChildrenChange::replayed(ManagedGroupEntity const & group, Children const & before) {
    ChildrenChange change;
    Children const & now = group.childrenVector();
    if (before == now) return change;
    std::unordered_set<ManagedEntity const *> listed;
    for (StrongRef<ManagedEntity> const & child : now) listed.insert(child.get());
    for (StrongRef<ManagedEntity> const & child : before)
        if (!listed.count(child.get())) change.gone.push_back(child);
    change.came = now;
    change.isWhole = true;
    return change;
}

} // namespace Vn::Blocks
