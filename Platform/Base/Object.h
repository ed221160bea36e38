#ifndef VN_PLATFORM_BASE_OBJECT_H
#define VN_PLATFORM_BASE_OBJECT_H

#include "Platform/Base/Export.h"
#include "Platform/Base/UniqueString.h"

namespace Vn {

// The root of the classes that are handled through a base pointer.
class VN_BASE_API Object {
public:
    virtual ~Object();

    // The id of the object's own class, and the object as the class or interface with an id.  Null
    // for both unless a class offers interfaces.
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

protected:
    Object() = default;
    Object(Object const &) = default;
    Object & operator=(Object const &) = default;
};

} // namespace Vn

#endif
