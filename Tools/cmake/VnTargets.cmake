# How every library, program and test of this project is made.

# Warnings, sanitizers and visibility, the same for every target.
add_library(VnBuildOptions INTERFACE)
target_include_directories(VnBuildOptions INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
target_compile_options(VnBuildOptions INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  "$<$<BOOL:${VN_WARNINGS_AS_ERRORS}>:-Werror>")
# A double is a double: no fused or excess-precision arithmetic on any machine.
target_compile_options(VnBuildOptions INTERFACE -ffp-contract=off)
# A library's own calls stay inside it, where they can be inlined.
target_compile_options(VnBuildOptions INTERFACE
  "$<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>")
if(VN_SANITIZE)
  target_compile_options(VnBuildOptions INTERFACE
    "-fsanitize=${VN_SANITIZE}" -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(VnBuildOptions INTERFACE "-fsanitize=${VN_SANITIZE}")
endif()

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
if(WIN32) # where modules are looked for beside the program
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endif()
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

# Binds the calls of a shared library to its own functions when it is linked.
function(vn_bind_own_functions name)
  if(UNIX AND NOT APPLE)
    target_link_options(${name} PRIVATE -Wl,-Bsymbolic-functions)
  endif()
endfunction()

# Where the public headers of a library are, before and after installation; and what they are written in.
set(VN_INSTALL_HEADERS "${CMAKE_INSTALL_INCLUDEDIR}/VnCommonData10")
function(vn_offer_headers name)
  target_include_directories(${name} INTERFACE
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>" "$<INSTALL_INTERFACE:${VN_INSTALL_HEADERS}>")
  target_compile_features(${name} INTERFACE cxx_std_20)
  # Modules of others can be unloaded; unique symbols would keep them.
  target_compile_options(${name} INTERFACE
    "$<INSTALL_INTERFACE:$<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>>")
endfunction()

# Exports what the map of the linker says.
function(vn_export_by_map name map)
  if(UNIX AND NOT APPLE)
    target_link_options(${name} PRIVATE "-Wl,--version-script=${map}")
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS "${map}")
  endif()
endfunction()

# vn_add_library(NAME EXPORT_MACRO sources...): a shared library of the platform.  While it is
# built, EXPORT_MACRO_BUILD is defined, by which its Export.h tells export from import.
function(vn_add_library name export_macro)
  add_library(${name} SHARED ${ARGN})
  target_compile_definitions(${name} PRIVATE ${export_macro}_BUILD)
  target_link_libraries(${name} PRIVATE VnBuildOptions)
  vn_bind_own_functions(${name})
  vn_offer_headers(${name})
  vn_export_by_map(${name} "${PROJECT_SOURCE_DIR}/Platform/Platform.map")
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION}
                        SOVERSION ${PROJECT_VERSION_MAJOR})
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "")
  endif()
endfunction()

# Where the application's data is: below the root directory, by default the one in which everything is
# installed.  Something else is for trees such as /usr, in which nothing but known folders may stand; a host
# has to tell the platform then, as PathInfo::installedRoot() says.
set(VN_INSTALL_ROOT "." CACHE STRING "The root directory of the data, from the prefix")

# vn_offer_data(FILE PLACE): offers a file at a place below the root directory, in the build tree and when
# installed.
function(vn_offer_data file place)
  configure_file("${file}" "${PROJECT_BINARY_DIR}/${place}" COPYONLY)
  cmake_path(GET place PARENT_PATH directory)
  install(FILES "${file}" DESTINATION "${VN_INSTALL_ROOT}/${directory}" COMPONENT runtime)
endfunction()

# The preferences of whoever runs the program stay out of it, and out of what it starts.
function(vn_use_own_options name)
  target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/Tests/Support/OwnOptions.cpp")
  target_link_libraries(${name} PRIVATE VnBase10)
  target_compile_definitions(${name} PRIVATE "VN_OWN_OPTIONS=\"${PROJECT_BINARY_DIR}/own-options\"")
endfunction()

# vn_add_test(NAME LIBRARIES libs... SOURCES sources...): a GoogleTest program run by CTest, one test
# after another; for Windows all of them at once, in random order, since under Wine each start of a
# program takes its time.
function(vn_add_test name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES;SOURCES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE VnBuildOptions ${ARG_LIBRARIES} GTest::gmock_main)
  vn_use_own_options(${name})
  if(WIN32)
    add_test(NAME ${name} COMMAND ${name} --gtest_shuffle)
    set_tests_properties(${name} PROPERTIES TIMEOUT 1800 FIXTURES_REQUIRED VnWine)
    return()
  endif()
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
  # In one process and in random order, so that no test leans on what another left behind.  Those that
  # take long, and stand alone, are left out.
  if(NOT VN_SANITIZE)
    add_test(NAME ${name}.InShuffledOrder
      COMMAND ${name} --gtest_shuffle "--gtest_filter=-*Fault*:*Damage*:*Large*:*OutOfMemory*")
    set_tests_properties(${name}.InShuffledOrder PROPERTIES TIMEOUT 600)
  endif()
endfunction()

# vn_add_catalogue(OUTPUT PO): compiles a catalogue of translations, once something depends on OUTPUT.
find_program(MSGFMT msgfmt REQUIRED)
function(vn_add_catalogue output po)
  cmake_path(GET output PARENT_PATH directory)
  add_custom_command(OUTPUT "${output}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${directory}"
    COMMAND "${MSGFMT}" --check-format -o "${output}" "${CMAKE_CURRENT_SOURCE_DIR}/${po}"
    DEPENDS "${po}" VERBATIM)
endfunction()
