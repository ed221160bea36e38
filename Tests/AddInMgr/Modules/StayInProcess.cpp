// Linked to a module, it keeps that loaded to the end of the process.

#ifdef _WIN32

#include <windows.h>

namespace {

[[maybe_unused]] bool const s_bKept = [] {
    static int s_here = 0;
    HMODULE module = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                  GET_MODULE_HANDLE_EX_FLAG_PIN,
                              reinterpret_cast<wchar_t const *>(&s_here), &module) != 0;
}();

} // namespace

#endif // elsewhere an option of the linker does it
