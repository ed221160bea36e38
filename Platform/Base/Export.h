#ifndef VN_PLATFORM_BASE_EXPORT_H
#define VN_PLATFORM_BASE_EXPORT_H

// VN_BASE_API stands in front of whatever VnBase10 offers to other modules.  VN_BASE_BUILD is
// defined while the library itself is built, VN_BASE_STATIC wherever it is linked as an archive.
#if defined(VN_BASE_STATIC)
#define VN_BASE_API
#elif defined(_WIN32)
#if defined(VN_BASE_BUILD)
#define VN_BASE_API __declspec(dllexport)
#else
#define VN_BASE_API __declspec(dllimport)
#endif
#else
#define VN_BASE_API __attribute__((visibility("default")))
#endif

#endif
