#ifndef VN_PLATFORM_BASE_OBJECT_H
#define VN_PLATFORM_BASE_OBJECT_H

#include <string>

#include "Platform/Base/Export.h"

namespace Vn {

// The root of the classes that are handled through a base pointer.
class VN_BASE_API Object {
public:
    virtual ~Object();

    // One line for a person who is looking for a mistake.  It is neither translated nor meant to be
    // read back.
    std::wstring toString() const;

protected:
    Object() = default;
    Object(Object const &) = default;
    Object & operator=(Object const &) = default;

private:
    // The name of the object's class, unless a derived class has more to tell.
    virtual std::wstring onToString() const;
};

} // namespace Vn

#endif
