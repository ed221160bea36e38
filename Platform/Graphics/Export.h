#ifndef VN_PLATFORM_GRAPHICS_EXPORT_H
#define VN_PLATFORM_GRAPHICS_EXPORT_H

// VRX_API stands in front of whatever Vrx offers to other modules.  VRX_BUILD is
// defined while the library itself is built, VRX_STATIC wherever it is linked as an archive.
#if defined(VRX_STATIC)
#define VRX_API
#elif defined(_WIN32)
#if defined(VRX_BUILD)
#define VRX_API __declspec(dllexport)
#else
#define VRX_API __declspec(dllimport)
#endif
#else
#define VRX_API __attribute__((visibility("default")))
#endif

#endif
