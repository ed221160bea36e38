#ifndef VN_PLATFORM_GRAPHICS_WORLDTYPE_H
#define VN_PLATFORM_GRAPHICS_WORLDTYPE_H

namespace Vrx::Scene {

// The space in which a group's positions are meant.  The numbers are passed between modules.
enum EWorldType : int {
    WorldScreen = 0, // pixels from the lower left corner; z isn't used
    WorldModel = 1   // cm in the space of the document
};

} // namespace Vrx::Scene

#endif
