// How scripts and selections find their way through a document.

#ifndef VN_PLATFORM_DATAMODEL_SCRIPTABLEOBJECT_H
#define VN_PLATFORM_DATAMODEL_SCRIPTABLEOBJECT_H

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class ObjectPath;
class Onk;

// An object that has a place in object paths.
class VN_DATAMODEL_API IScriptableObject {
public:
    // The name of the object among its siblings.  `onk` stays as it came if the object has none.
    virtual void getOnk(Onk & onk) const = 0;
    // The object that `onk` names below this one, which is the last of those that `path` led
    // through so far; null if there is none.
    virtual IScriptableObject * getChildObject(Onk const & onk, ObjectPath const & path) const = 0;
    virtual ~IScriptableObject();

    // The id of the interface, the same pointer at every call; and this object as the class or
    // interface with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

// An object that stands at the head of a document and finds objects which no segment has as a root.
class VN_DATAMODEL_API IScriptableRootObject {
public:
    virtual ~IScriptableRootObject();
    // The object that the first name of a path stands for; null if there is none.
    virtual IScriptableObject * getObject(Onk const & onk) = 0;

    // As of IScriptableObject.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn

#endif
