# What is installed, and where.  Everything finds its neighbours by their place relative to it, so an
# installed tree can be moved.
#
#   bin/vnconsole                           share/man/{,de/,fr/,ja/}man1/vnconsole.1
#   share/bash-completion/completions/, share/zsh/site-functions/   what the shells complete
#   Server/                                 the configurations of the add-ins and their schema
#   lib/VnCommonData10.so, VnConsole10.so and the libraries of the platform
#   share/locale/<language>/LC_MESSAGES/{VnCommonData,VnConsole}.mo (by Translations/)
#   include/VnCommonData10/                 the public headers, in the folders of their includes
#   lib/cmake/VnCommonData10/               for find_package
#   lib/pkgconfig/VnCommonData10.pc         for pkg-config
#   share/doc/vncommondata10/               documents and licences (by Documents.cmake)
#
# On Windows the libraries stand beside the program in bin/, with those of the compiler.

include(CMakePackageConfigHelpers)

set(VN_LIBRARIES VnCommonData10 VnAddInMgr10 VnScene10 Vrx VnDataModel10 tg218A VnTypes10
    VnBase10)
if(TARGET VnPicture10)
  list(APPEND VN_LIBRARIES VnPicture10)
endif()
set_target_properties(${VN_LIBRARIES} PROPERTIES INSTALL_RPATH "$ORIGIN")
file(RELATIVE_PATH VN_BIN_TO_LIB
     "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set_target_properties(vnconsole PROPERTIES INSTALL_RPATH "$ORIGIN/${VN_BIN_TO_LIB}")

install(TARGETS ${VN_LIBRARIES} EXPORT VnCommonData10Targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
install(TARGETS vnconsole RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
# The add-ins are where the libraries are.
set(VN_INSTALL_MODULES "${CMAKE_INSTALL_LIBDIR}")
if(WIN32)
  set(VN_INSTALL_MODULES "${CMAKE_INSTALL_BINDIR}")
endif()
set_target_properties(VnConsole10 PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS VnConsole10 LIBRARY DESTINATION "${VN_INSTALL_MODULES}" COMPONENT runtime)
if(NOT WIN32)
  install(FILES Docs/vnconsole.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime)
  foreach(language IN ITEMS de fr ja)
    install(FILES Docs/${language}/vnconsole.1
            DESTINATION "${CMAKE_INSTALL_MANDIR}/${language}/man1" COMPONENT runtime)
  endforeach()
  install(FILES Console/ShellCompletion/vnconsole.bash RENAME vnconsole COMPONENT runtime
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  install(FILES Console/ShellCompletion/_vnconsole COMPONENT runtime
          DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
endif()

# A header is public unless it says "Internal" or its folder is internal.
install(DIRECTORY Platform Server DESTINATION "${VN_INSTALL_HEADERS}" COMPONENT development
  FILES_MATCHING PATTERN "*.h"
  PATTERN "*Internal.h" EXCLUDE
  REGEX "/Platform/DataModel/(File|Log)$" EXCLUDE
  PATTERN "LoadOrder.h" EXCLUDE
  PATTERN "Configuration" EXCLUDE)
# Tables that public headers are made of.
foreach(table IN ITEMS Expressions/Functions.inc Expressions/Tokens.inc Units/UnitCatalogue.inc
        Units/UnitKinds.inc)
  get_filename_component(directory "${table}" DIRECTORY)
  install(FILES "Server/CommonData/${table}" COMPONENT development
          DESTINATION "${VN_INSTALL_HEADERS}/Server/CommonData/${directory}")
endforeach()

set(VN_INSTALL_CMAKE "${CMAKE_INSTALL_LIBDIR}/cmake/VnCommonData10")
install(EXPORT VnCommonData10Targets NAMESPACE VnCommonData10::
        DESTINATION "${VN_INSTALL_CMAKE}" COMPONENT development)
configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/VnCommonData10Config.cmake.in"
  "${PROJECT_BINARY_DIR}/VnCommonData10Config.cmake"
  INSTALL_DESTINATION "${VN_INSTALL_CMAKE}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/VnCommonData10ConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VnCommonData10Config.cmake"
              "${PROJECT_BINARY_DIR}/VnCommonData10ConfigVersion.cmake"
        DESTINATION "${VN_INSTALL_CMAKE}" COMPONENT development)

if(NOT WIN32)
  include(VnPkgConfig)
  install(FILES "${PROJECT_BINARY_DIR}/VnCommonData10.pc"
          DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endif()
