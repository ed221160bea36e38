# cpack makes three Debian packages: vncommondata10 to run, vncommondata10-pictures with what it takes to draw,
# vncommondata10-dev to build with.

set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vncommondata10)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "VnCommonData10")
set(CPACK_PACKAGE_CONTACT "VnCommonData10 developers <developers@vncommondata10.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime pictures development)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/MoveDataToShare.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# File permissions of the system's own packages, whatever the umask of the build.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME vncommondata10)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "A shared module that reads, evaluates, shows and rebuilds quantities with
 their units, such as 2' 6 3/4\", and the program vnconsole.")
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
  # Where the libraries are that the package brings itself.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
else()
  message(STATUS "dpkg-shlibdeps wasn't found: packages won't name the system libraries they need")
endif()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "vncommondata10-pictures (= ${PROJECT_VERSION})")

# The library that draws is large, and is loaded by the first picture: who draws none does without it.
set(CPACK_DEBIAN_PICTURES_PACKAGE_NAME vncommondata10-pictures)
set(CPACK_DEBIAN_PICTURES_PACKAGE_DEPENDS "vncommondata10 (= ${PROJECT_VERSION}), libosmesa6")
set(CPACK_COMPONENT_PICTURES_DESCRIPTION
    "Has vnconsole draw pictures of documents: brings the library that draws them by software.")
install(FILES Docs/copyright DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/vncommondata10-pictures"
        COMPONENT pictures EXCLUDE_FROM_ALL)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME vncommondata10-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "vncommondata10 (= ${PROJECT_VERSION}), libboost-dev, libtbb-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "The headers of VnCommonData10, and its files for find_package and pkg-config.")

include(CPack)
