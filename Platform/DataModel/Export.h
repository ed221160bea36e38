#ifndef VN_PLATFORM_DATAMODEL_EXPORT_H
#define VN_PLATFORM_DATAMODEL_EXPORT_H

// VN_DATAMODEL_API stands in front of whatever VnDataModel10 offers to other modules.
// VN_DATAMODEL_BUILD is defined while the library itself is built, VN_DATAMODEL_STATIC wherever it
// is linked as an archive.
#if defined(VN_DATAMODEL_STATIC)
#define VN_DATAMODEL_API
#elif defined(_WIN32)
#if defined(VN_DATAMODEL_BUILD)
#define VN_DATAMODEL_API __declspec(dllexport)
#else
#define VN_DATAMODEL_API __declspec(dllimport)
#endif
#else
#define VN_DATAMODEL_API __attribute__((visibility("default")))
#endif

#endif
