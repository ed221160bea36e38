# In Debian's tree data is in /usr/share: moves the root directory of the data there, before cpack packs what
# it has installed.  The completion for zsh goes where
# that looks for those of packages.
file(GLOB data "${CPACK_TEMPORARY_DIRECTORY}/*/usr/Server")
foreach(directory IN LISTS data)
  cmake_path(GET directory PARENT_PATH usr)
  file(MAKE_DIRECTORY "${usr}/share/VnCommonData10")
  file(CHMOD "${usr}/share" "${usr}/share/VnCommonData10" DIRECTORY_PERMISSIONS
       OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  file(RENAME "${directory}" "${usr}/share/VnCommonData10/Server")
endforeach()
file(GLOB directories "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/zsh/site-functions")
foreach(directory IN LISTS directories)
  cmake_path(GET directory PARENT_PATH zsh)
  file(RENAME "${directory}" "${zsh}/vendor-completions")
endforeach()
