# What find_package gives elsewhere.  Of the libraries that are needed, everything is in the headers, and
# those of this machine serve: they are offered one by one, so that no other header of it is seen.
set(VN_HOST_HEADERS "${PROJECT_BINARY_DIR}/host-headers")

# vn_host_headers(TARGET names...): a library that is nothing but these directories of headers.
function(vn_host_headers target)
  file(MAKE_DIRECTORY "${VN_HOST_HEADERS}")
  foreach(name IN LISTS ARGN)
    if(NOT EXISTS "/usr/include/${name}")
      message(FATAL_ERROR "${target} needs /usr/include/${name}")
    endif()
    file(CREATE_LINK "/usr/include/${name}" "${VN_HOST_HEADERS}/${name}" SYMBOLIC)
  endforeach()
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE "${VN_HOST_HEADERS}")
endfunction()

vn_host_headers(Boost::headers boost)
vn_host_headers(TBB::tbb tbb oneapi)
vn_host_headers(nlohmann_json::nlohmann_json nlohmann)
vn_host_headers(CLI11::CLI11 CLI)

# The compiler's own libraries, which the programs look for beside themselves.  They are shared, since
# exceptions and what the standard library allocates go from module to module.
foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
                  OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT IS_ABSOLUTE "${file}")
    message(FATAL_ERROR "The compiler doesn't know where its ${name} is")
  endif()
  file(COPY "${file}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
endforeach()
