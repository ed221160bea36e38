# Writes VnCommonData10.pc.  It finds the installation from its own place, so a tree can be moved.

# From the directory of the pkg-config file to a directory of the installation.  Either may have been
# configured with an absolute path, which is then taken as it is.
function(vn_pkgconfig_path variable directory)
  if(IS_ABSOLUTE "${directory}")
    set(${variable} "${directory}" PARENT_SCOPE)
  elseif(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(${variable} "${CMAKE_INSTALL_PREFIX}/${directory}" PARENT_SCOPE)
  else()
    file(RELATIVE_PATH path "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/${directory}")
    string(REGEX REPLACE "/$" "" path "${path}")
    set(${variable} "\${pcfiledir}/${path}" PARENT_SCOPE)
  endif()
endfunction()
vn_pkgconfig_path(VN_PKGCONFIG_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
vn_pkgconfig_path(VN_PKGCONFIG_INCLUDEDIR "${VN_INSTALL_HEADERS}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/VnCommonData10.pc.in"
               "${PROJECT_BINARY_DIR}/VnCommonData10.pc" @ONLY)
