#ifndef VN_PLATFORM_PICTURE_EXPORT_H
#define VN_PLATFORM_PICTURE_EXPORT_H

// VN_PICTURE_API stands in front of whatever VnPicture10 offers to other modules.  VN_PICTURE_BUILD
// is defined while the library itself is built, VN_PICTURE_STATIC wherever it is linked as an
// archive.
#if defined(VN_PICTURE_STATIC)
#define VN_PICTURE_API
#elif defined(_WIN32)
#if defined(VN_PICTURE_BUILD)
#define VN_PICTURE_API __declspec(dllexport)
#else
#define VN_PICTURE_API __declspec(dllimport)
#endif
#else
#define VN_PICTURE_API __attribute__((visibility("default")))
#endif

#endif
