// What is told about a change of an entity.

#ifndef VN_PLATFORM_DATAMODEL_DATACHANGE_H
#define VN_PLATFORM_DATAMODEL_DATACHANGE_H

#include <memory>
#include <string>
#include <vector>

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

// The details of a change, handed to the hooks of the entity and to its observers.  Details may
// carry further details.
class VN_DATAMODEL_API DataChange {
public:
    // Who changes.  The values are bits, and are read by `test` only.
    enum ETransact : unsigned {
        TransactDirect = 1,      // running code changes something
        TransactReplay = 4,      // undo, redo or abort restores state; side effects aren't repeated
        TransactUnsummarized = 8 // no summary of the change is to be made
    };

    // What changes.  The values of several changes are combined by "or".
    enum EChangeType : unsigned {
        ChangeStructural = 0,  // a link: parent, root list, group parent, counter
        ChangeValue = 0x10,    // a value of the entity
        ChangeChildren = 0x20, // a child was added or removed
    };

    // When it is told.
    enum ETiming : unsigned { TimingPre = 1, TimingPost = 2, TimingPreAndPost = 3 };

    // Without further details.  A copy has clones of the further details that the other owned.
    DataChange();
    DataChange(DataChange const & other);
    DataChange & operator=(DataChange const & other);
    virtual ~DataChange();

    // Whether `value` has a bit of `bit`.
    static bool test(ETransact value, ETransact bit) noexcept { return (value & bit) != 0; }

    // A copy that the caller owns.
    std::unique_ptr<DataChange> clone() const { return std::unique_ptr<DataChange>(onClone()); }

    // Attaches further details, which the hooks that run later find here.  With `own` they are
    // deleted with this object, without it they must outlive it.  Null is ignored.
    void addDataChange(DataChange * details, bool own);
    // How many were attached, and each, in the order in which they came; null for a bad index.
    unsigned dataChanges() const noexcept;
    DataChange * dataChange(unsigned index) const noexcept;

    // This or the first attached details, at any depth, that answer to an interface; null if none.
    DataChange * find(UniqueString const * interfaceId);

    // A line for a person who is looking for a mistake.
    std::string toString() const { return onToString(); }

    // The word for a kind of change, such as "ChangeValue", with " | " between several.
    static std::wstring typeText(EChangeType type);

    // The id of this class, of the object's own class, and the object as a class or interface.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

private:
    virtual DataChange * onClone() const;
    virtual std::string onToString() const;

    struct Attached {
        DataChange * details;
        bool isOwned;
    };
    void dropAttached() noexcept;

    std::vector<Attached> m_attached;
};

} // namespace Vn

#endif
