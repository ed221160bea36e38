#ifndef VN_PLATFORM_SCENE_EXPORT_H
#define VN_PLATFORM_SCENE_EXPORT_H

// VN_SCENE_API stands in front of whatever VnScene10 offers to other modules.  VN_SCENE_BUILD is
// defined while the library itself is built, VN_SCENE_STATIC wherever it is linked as an archive.
#if defined(VN_SCENE_STATIC)
#define VN_SCENE_API
#elif defined(_WIN32)
#if defined(VN_SCENE_BUILD)
#define VN_SCENE_API __declspec(dllexport)
#else
#define VN_SCENE_API __declspec(dllimport)
#endif
#else
#define VN_SCENE_API __attribute__((visibility("default")))
#endif

#endif
