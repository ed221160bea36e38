// How the add-ins of the tests differ.

#ifndef VN_TESTS_ADDINMGR_MODULES_TESTADDIN_H
#define VN_TESTS_ADDINMGR_MODULES_TESTADDIN_H

namespace Vn::Testing {

// What goes wrong with an add-in.
enum class EFault {
    None,
    StaticObjectThrows,
    InitializerThrows,
    EntryThrows,
    EntryGivesNull,
    LoadedHookThrows,
    LoadedHookThrowsNumber, // and no std::exception
    UnloadingHookThrows,
    NewAssetHookThrows,
    LoadedAssetHookThrows,
    FullyLoadedAssetHookThrows
};

} // namespace Vn::Testing

#endif
