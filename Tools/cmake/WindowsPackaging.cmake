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

# What the programs have beside them, beyond the headers of others.
vn_install_licenses(gcc-mingw-w64-base mingw-w64-common)
install(FILES "${VN_WINDOWS_DEPENDENCIES}/licenses/sqlite3.txt"
              "${VN_WINDOWS_DEPENDENCIES}/licenses/libxml2.txt"
        DESTINATION "${VN_INSTALL_LICENSES}" COMPONENT runtime)

include(CPack)
