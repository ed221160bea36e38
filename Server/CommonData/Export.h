// The macro that marks what the common-data module offers to others.

#ifndef VN_SERVER_COMMONDATA_EXPORT_H
#define VN_SERVER_COMMONDATA_EXPORT_H

#if defined(VN_COMMONDATA_STATIC)
#define VN_COMMONDATA_API
#elif defined(_WIN32) && defined(VN_COMMONDATA_BUILD)
#define VN_COMMONDATA_API __declspec(dllexport)
#elif defined(_WIN32)
#define VN_COMMONDATA_API __declspec(dllimport)
#else
#define VN_COMMONDATA_API __attribute__((visibility("default")))
#endif

#endif
