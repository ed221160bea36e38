#ifndef VN_SERVER_COMMONDATA_COMPONENTS_ICOMPONENTOBJECT_H
#define VN_SERVER_COMMONDATA_COMPONENTS_ICOMPONENTOBJECT_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

class IComponent;
class IVisibilityToggle;

// An entity within a component.  The walk up and down the tree of component objects is that of the
// managed tree, or of the common data, unless a class has another.
class VN_COMMONDATA_API IComponentObject {
public:
    // The nearest component above the object, which doesn't count itself.  Null if there is none,
    // or if the way up meets an ancestor that is neither component nor component object, or leads
    // in a circle.  Component objects on the way are asked for their own, by this operation; of
    // many, also those above one whose class has another answer.
    virtual IComponent * component() const;
    // The parent as a component object; null if there is none or if it isn't such an object.
    virtual IComponentObject * componentObjectParent() const;
    // The number of children, 0 unless the object is a managed group; and each as a component
    // object, null if it is none.  The index isn't checked.
    virtual unsigned componentObjectChildren() const;
    virtual IComponentObject * componentObjectChild(unsigned index) const;
    // What shows and hides the object; null if nothing does.
    virtual IVisibilityToggle * visibilityToggle() const;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

    // The parent in the managed tree; of common data outside it, the parent that it tells.  Null if
    // there is none.
    StrongRef<Entity> _coParent() const;

    // Without state of its own.
    IComponentObject() = default;
    IComponentObject(IComponentObject const &) = default;
    IComponentObject & operator=(IComponentObject const &) = default;

protected:
    // Nobody owns an object by this interface.
    ~IComponentObject() = default;
};

} // namespace Vn::CommonData

#endif
