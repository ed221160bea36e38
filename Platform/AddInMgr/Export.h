#ifndef VN_PLATFORM_ADDINMGR_EXPORT_H
#define VN_PLATFORM_ADDINMGR_EXPORT_H

// VN_ADDINMGR_API stands in front of whatever VnAddInMgr10 offers to other modules.
// VN_ADDINMGR_BUILD is defined while the library itself is built, VN_ADDINMGR_STATIC wherever it is
// linked as an archive.
#if defined(VN_ADDINMGR_STATIC)
#define VN_ADDINMGR_API
#elif defined(_WIN32)
#if defined(VN_ADDINMGR_BUILD)
#define VN_ADDINMGR_API __declspec(dllexport)
#else
#define VN_ADDINMGR_API __declspec(dllimport)
#endif
#else
#define VN_ADDINMGR_API __attribute__((visibility("default")))
#endif

// VN_ADDIN_EXPORT stands in front of the `_GetIAddIn` of an add-in.
#if defined(_WIN32)
#define VN_ADDIN_EXPORT __declspec(dllexport)
#else
#define VN_ADDIN_EXPORT __attribute__((visibility("default")))
#endif

#endif
