// What buffers have in common.

#ifndef VN_PLATFORM_GRAPHICS_BUFFER_H
#define VN_PLATFORM_GRAPHICS_BUFFER_H

namespace Vrx::Devices {

// A device that draws.  There is none in this library: where one may be given, null means that the
// buffer stays in memory.
class Device;

// How often the numbers of a buffer change.  These and the following are passed between modules as
// numbers; a buffer keeps those that it doesn't know as they are.
enum EUsage {
    UsageStatic = 0, // written once, drawn often
    UsageDynamic = 1
};

// Who may reach the numbers once a device has them, as bits of a mask.
enum EAccess { AccessNone = 0, AccessRead = 1, AccessWrite = 2, AccessReadWrite = 3 };

// How far a buffer has come.
enum EBufferState {
    StateEmpty = 0,
    StateFilling = 1,
    StateComplete = 2 // ready to be drawn
};

} // namespace Vrx::Devices

#endif
