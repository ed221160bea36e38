#ifndef VN_CONSOLE_ADDIN_EXPORT_H
#define VN_CONSOLE_ADDIN_EXPORT_H

// VN_CONSOLE_API stands in front of what VnConsole10 offers to the program that loads it.
#if defined(_WIN32)
#define VN_CONSOLE_API __declspec(dllexport)
#else
#define VN_CONSOLE_API __attribute__((visibility("default")))
#endif

#endif
