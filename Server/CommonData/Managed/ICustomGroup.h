// Custom groups as others see them: what holds grouped things, and what can be grouped.

#ifndef VN_SERVER_COMMONDATA_MANAGED_ICUSTOMGROUP_H
#define VN_SERVER_COMMONDATA_MANAGED_ICUSTOMGROUP_H

#include "Platform/Base/UniqueString.h"
#include "Server/CommonData/Export.h"

namespace Vn::Managed {

class ICustomGroupChild;

// Something that lists grouped things.
class VN_COMMONDATA_API ICustomGroupParent {
public:
    // Puts a member after the others, which sets its group parent; takes it out, which doesn't;
    // and puts it before the one at `index`, or after the others if there is none by then.  A null
    // member is ignored.
    virtual void addGroupChild(ICustomGroupChild * child) = 0;
    virtual void removeGroupChild(ICustomGroupChild * child) = 0;
    virtual void insertGroupChild(ICustomGroupChild * child, unsigned index) = 0;
    // Whether something may become a member.
    virtual bool canAddGroupChild(ICustomGroupChild const * child) const = 0;
    // The number of members, those that have died included; and each of them, null if it has died.
    virtual unsigned groupChildren() const = 0;
    virtual ICustomGroupChild * groupChild(unsigned index) const = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

protected:
    // Nobody owns an object by this interface.
    ~ICustomGroupParent() = default;
};

// Something that can be a member of a custom group.
class VN_COMMONDATA_API ICustomGroupChild {
public:
    // Sets who lists the object, and tells it; null if nobody does or if that is gone.
    virtual void groupParent(ICustomGroupParent * parent) = 0;
    virtual ICustomGroupParent * groupParent() const = 0;

    // As of ICustomGroupParent.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

protected:
    // Nobody owns an object by this interface.
    ~ICustomGroupChild() = default;
};

} // namespace Vn::Managed

#endif
