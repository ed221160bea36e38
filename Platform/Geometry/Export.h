#ifndef VN_PLATFORM_GEOMETRY_EXPORT_H
#define VN_PLATFORM_GEOMETRY_EXPORT_H

// TG_API stands in front of whatever tg218A offers to other modules.  TG_BUILD is
// defined while the library itself is built, TG_STATIC wherever it is linked as an archive.
#if defined(TG_STATIC)
#define TG_API
#elif defined(_WIN32)
#if defined(TG_BUILD)
#define TG_API __declspec(dllexport)
#else
#define TG_API __declspec(dllimport)
#endif
#else
#define TG_API __attribute__((visibility("default")))
#endif

#endif
