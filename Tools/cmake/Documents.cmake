# What is installed to be read: the documents, and the terms of what is shipped of others.
#
#   share/doc/vncommondata10/README.md, CHANGELOG.md, CONTRIBUTING.md, copyright
#   share/doc/vncommondata10/Docs/          the guides, so that their links lead where they do in the sources
#   share/doc/vncommondata10/Samples/       the sources of the samples, which build from a copy
#   share/doc/vncommondata10/licenses/
#
# The zip for Windows has them in doc/ and licenses/.

set(VN_INSTALL_DOCUMENTS "${CMAKE_INSTALL_DATAROOTDIR}/doc/vncommondata10")
set(VN_INSTALL_LICENSES "${VN_INSTALL_DOCUMENTS}/licenses")
if(WIN32)
  set(VN_INSTALL_DOCUMENTS doc)
  set(VN_INSTALL_LICENSES licenses)
endif()

install(FILES README.md CHANGELOG.md CONTRIBUTING.md Docs/copyright
        DESTINATION "${VN_INSTALL_DOCUMENTS}" COMPONENT runtime)
install(DIRECTORY Docs/ DESTINATION "${VN_INSTALL_DOCUMENTS}/Docs" COMPONENT runtime
        FILES_MATCHING PATTERN "*.md")
install(DIRECTORY Samples DESTINATION "${VN_INSTALL_DOCUMENTS}" COMPONENT development)

# vn_install_licenses(package...): the terms of packages of this system whose code is shipped, as they state them,
# with the licences that they only refer to.
function(vn_install_licenses)
  foreach(package IN LISTS ARGN)
    set(copyright "/usr/share/doc/${package}/copyright")
    if(EXISTS "${copyright}")
      file(REAL_PATH "${copyright}" copyright)
      install(FILES "${copyright}" DESTINATION "${VN_INSTALL_LICENSES}" RENAME "${package}.txt"
              COMPONENT runtime)
      file(READ "${copyright}" terms)
      string(REGEX MATCHALL "/usr/share/common-licenses/[A-Za-z0-9.-]*[A-Za-z0-9]" common "${terms}")
      list(REMOVE_DUPLICATES common)
      foreach(license IN LISTS common)
        get_filename_component(name "${license}" NAME)
        if(EXISTS "${license}")
          file(REAL_PATH "${license}" license)
          install(FILES "${license}" DESTINATION "${VN_INSTALL_LICENSES}" RENAME "${name}.txt"
                  COMPONENT runtime)
        endif()
      endforeach()
    else()
      message(WARNING "A package would lack the licence of ${package}: there is no ${copyright}")
    endif()
  endforeach()
endfunction()

# Headers whose code is in the libraries and programs.
vn_install_licenses(libboost-dev libtbb-dev libeigen3-dev nlohmann-json3-dev libcli11-dev)
