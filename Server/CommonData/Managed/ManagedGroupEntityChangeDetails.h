// What is told about a change of a list of children.

#ifndef VN_SERVER_COMMONDATA_MANAGED_MANAGEDGROUPENTITYCHANGEDETAILS_H
#define VN_SERVER_COMMONDATA_MANAGED_MANAGEDGROUPENTITYCHANGEDETAILS_H

#include <string>
#include <vector>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/DataChange.h"
#include "Server/CommonData/Export.h"

namespace Vn::Managed {

class ManagedEntity;

// Goes with a direct change: one child came or went.
class VN_COMMONDATA_API ManagedGroupEntityChangeDetails
    : public Identified<ManagedGroupEntityChangeDetails, DataChange> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::Managed::ManagedGroupEntityChangeDetails"};

    // What happened to the child.
    enum EType : unsigned { ChildAdded = 0, ChildRemoved = 1, ChildInserted = 2 };
    // The index that goes with all but ChildInserted.
    static constexpr unsigned c_noIndex = 0xFFFFFFFFU;

    // Keeps `managedEntity` for as long as the details last.
    ManagedGroupEntityChangeDetails(StrongRef<ManagedEntity> const & managedEntity,
                                    EType changeType, unsigned insertionIndex);
    ManagedGroupEntityChangeDetails(ManagedGroupEntityChangeDetails const & other);
    ManagedGroupEntityChangeDetails & operator=(ManagedGroupEntityChangeDetails const & other);
    ~ManagedGroupEntityChangeDetails() override;

    // What the constructor was given.
    StrongRef<ManagedEntity> const & managedEntity() const noexcept { return m_rManagedEntity; }
    EType changeType() const noexcept { return m_changeType; }
    unsigned insertionIndex() const noexcept { return m_insertionIndex; }

private:
    DataChange * onClone() const override;
    std::string onToString() const override;

    StrongRef<ManagedEntity> m_rManagedEntity;
    EType m_changeType;
    unsigned m_insertionIndex;
};

// Goes with a replay, which changes a list without its group: the difference between the list
// before and after.  The pointers are good for as long as the change is told.
class VN_COMMONDATA_API ManagedGroupEntityTransactChangeDetails
    : public Identified<ManagedGroupEntityTransactChangeDetails, DataChange> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::Managed::ManagedGroupEntityTransactChangeDetails"};

    // Remembers the list before; there is no difference yet.
    explicit ManagedGroupEntityTransactChangeDetails(
        std::vector<StrongRef<ManagedEntity>> const & children);
    ManagedGroupEntityTransactChangeDetails(ManagedGroupEntityTransactChangeDetails const & other);
    ManagedGroupEntityTransactChangeDetails &
    operator=(ManagedGroupEntityTransactChangeDetails const & other);
    ~ManagedGroupEntityTransactChangeDetails() override;

    // The list after, with null in place of each child that was there before; empty if nothing
    // changed.
    std::vector<ManagedEntity *> const & addedChildren() const noexcept { return m_added; }
    // The children that aren't there any more, in the order that they had, without gaps.  An empty
    // place of the list isn't a child, and isn't told here.
    //
    // If only the order changed, all children are told here in the old order, and all as added in
    // the new.
    std::vector<ManagedEntity *> const & removedChildren() const noexcept { return m_removed; }

    // Computes the difference to the list as it is now.
    void calculateChildrenDiff(std::vector<StrongRef<ManagedEntity>> const & now);

private:
    DataChange * onClone() const override;
    std::string onToString() const override;

    std::vector<ManagedEntity *> m_added;
    std::vector<ManagedEntity *> m_removed;
    std::vector<ManagedEntity *> m_snapshot;
};

} // namespace Vn::Managed

#endif
