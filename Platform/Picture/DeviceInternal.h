// Where pictures are drawn: an OpenGL context that needs no display.  The one place that knows
// which library makes it.

#ifndef VN_PLATFORM_PICTURE_DEVICEINTERNAL_H
#define VN_PLATFORM_PICTURE_DEVICEINTERNAL_H

#include <memory>

#include "Platform/Base/Status.h"

namespace Vn::Picture {

class Device {
public:
    // Opens a device with OpenGL 3.3.  Unsupported if the library isn't there or is too old.
    [[nodiscard]] static Status open(std::unique_ptr<Device> & device);
    virtual ~Device();
    Device(Device const &) = delete;
    Device & operator=(Device const &) = delete;

    // Makes the context that of the thread, until another is or the device ends.
    [[nodiscard]] virtual Status makeCurrent() = 0;
    // A function of OpenGL; null if there is none of that name.
    virtual void * function(char const * name) const = 0;

protected:
    Device() = default;
};

} // namespace Vn::Picture

#endif
