# GoogleTest from its sources, and Wine to run what was built.
set(VN_GOOGLETEST /usr/src/googletest CACHE PATH "The sources of GoogleTest")
set(INSTALL_GTEST OFF)
# It has threads of Windows itself.
set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
add_subdirectory("${VN_GOOGLETEST}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)

# A Windows of the build's own, which the first test makes.
find_program(VN_WINE wine REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR
    "${CMAKE_COMMAND};-E;env;VN_WINEPREFIX=${PROJECT_BINARY_DIR}/wine;${PROJECT_SOURCE_DIR}/Tools/wine.sh")
add_test(NAME Wine COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} cmd /c ver)
set_tests_properties(Wine PROPERTIES TIMEOUT 300 FIXTURES_SETUP VnWine)
