#ifndef VN_PLATFORM_TYPES_EXPORT_H
#define VN_PLATFORM_TYPES_EXPORT_H

// VN_TYPES_API stands in front of whatever VnTypes10 offers to other modules.  VN_TYPES_BUILD is
// defined while the library itself is built, VN_TYPES_STATIC wherever it is linked as an archive.
#if defined(VN_TYPES_STATIC)
#define VN_TYPES_API
#elif defined(_WIN32)
#if defined(VN_TYPES_BUILD)
#define VN_TYPES_API __declspec(dllexport)
#else
#define VN_TYPES_API __declspec(dllimport)
#endif
#else
#define VN_TYPES_API __attribute__((visibility("default")))
#endif

#endif
