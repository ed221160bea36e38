# Cross-builds for 64-bit Windows with mingw-w64, whose threads are those of POSIX.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(VN_WINDOWS_TRIPLE x86_64-w64-mingw32)

foreach(language IN ITEMS C CXX)
  set(compiler gcc)
  if(language STREQUAL CXX)
    set(compiler g++)
  endif()
  find_program(VN_WINDOWS_${language}
    NAMES ${VN_WINDOWS_TRIPLE}-${compiler}-posix ${VN_WINDOWS_TRIPLE}-${compiler} REQUIRED)
  set(CMAKE_${language}_COMPILER "${VN_WINDOWS_${language}}")
endforeach()
set(CMAKE_RC_COMPILER ${VN_WINDOWS_TRIPLE}-windres)

# Nothing of this machine's own may get in but what the build names.
set(CMAKE_FIND_ROOT_PATH /usr/${VN_WINDOWS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
