# cpack makes one zip: the program and what it needs in bin/, what others build with in include/ and
# lib/, and the licences of all that is shipped.

set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME VnCommonData10)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_FILE_NAME "VnCommonData10-${PROJECT_VERSION}-windows-x86_64")
set(CPACK_PACKAGE_VENDOR "VnCommonData10")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)

# What the programs contain, or have beside them, of others: as their Debian packages state it.
foreach(package IN ITEMS
    gcc-mingw-w64-base mingw-w64-common
    libboost-dev libtbb-dev libeigen3-dev nlohmann-json3-dev libcli11-dev)
  set(copyright "/usr/share/doc/${package}/copyright")
  if(EXISTS "${copyright}")
    file(REAL_PATH "${copyright}" copyright)
    install(FILES "${copyright}" DESTINATION licenses RENAME "${package}.txt" COMPONENT runtime)
  else()
    message(WARNING "The zip lacks the licence of ${package}: there is no ${copyright}")
  endif()
endforeach()
install(FILES "${VN_WINDOWS_DEPENDENCIES}/licenses/sqlite3.txt"
              "${VN_WINDOWS_DEPENDENCIES}/licenses/libxml2.txt"
        DESTINATION licenses COMPONENT runtime)

include(CPack)
