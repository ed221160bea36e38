# What find_package gives elsewhere.  Of the libraries that are needed, everything is in the headers, and
# those of this machine serve: they are offered one by one, so that no other header of it is seen.
set(VN_HOST_HEADERS "${PROJECT_BINARY_DIR}/host-headers")

# vn_host_headers(TARGET paths...): a library that is nothing but these headers or directories of headers.
function(vn_host_headers target)
  file(MAKE_DIRECTORY "${VN_HOST_HEADERS}")
  foreach(path IN LISTS ARGN)
    if(NOT EXISTS "/usr/include/${path}")
      message(FATAL_ERROR "${target} needs /usr/include/${path}")
    endif()
    get_filename_component(name "${path}" NAME)
    file(CREATE_LINK "/usr/include/${path}" "${VN_HOST_HEADERS}/${name}" SYMBOLIC)
  endforeach()
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE "${VN_HOST_HEADERS}")
endfunction()

vn_host_headers(Boost::headers boost)
vn_host_headers(TBB::tbb tbb oneapi)
vn_host_headers(Eigen3::Eigen eigen3/Eigen)
vn_host_headers(nlohmann_json::nlohmann_json nlohmann)
vn_host_headers(CLI11::CLI11 CLI)

# What has more than headers is built from Debian's sources, and comes with the programs.
set(VN_WINDOWS_DEPENDENCIES "${PROJECT_SOURCE_DIR}/build/windows-dependencies"
    CACHE PATH "Where SQLite and libxml2 for Windows are, or are built")
message(STATUS "Building the dependencies, if they aren't there")
execute_process(
  COMMAND "${PROJECT_SOURCE_DIR}/Tools/windows/build-dependencies.sh" "${VN_WINDOWS_DEPENDENCIES}"
  COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             "${PROJECT_SOURCE_DIR}/Tools/windows/build-dependencies.sh")

# vn_windows_library(TARGET NAME DEFINITIONS...): one of them.
function(vn_windows_library target name)
  set(dll "${VN_WINDOWS_DEPENDENCIES}/bin/${name}.dll")
  add_library(${target} SHARED IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION "${dll}"
    IMPORTED_IMPLIB "${VN_WINDOWS_DEPENDENCIES}/lib/lib${name}.dll.a")
  target_include_directories(${target} SYSTEM INTERFACE "${VN_WINDOWS_DEPENDENCIES}/include")
  target_compile_definitions(${target} INTERFACE ${ARGN})
  file(COPY "${dll}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endfunction()

vn_windows_library(SQLite::SQLite3 VnSqlite3 "SQLITE_API=__declspec(dllimport)")
vn_windows_library(LibXml2::LibXml2 VnXml2)
install(FILES "${VN_WINDOWS_DEPENDENCIES}/bin/VnSqlite3.dll"
              "${VN_WINDOWS_DEPENDENCIES}/bin/VnXml2.dll"
        DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)

# The compiler's own libraries, which the programs look for beside themselves.  They are shared, since
# exceptions and what the standard library allocates go from module to module.
foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libquadmath-0.dll libwinpthread-1.dll)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
                  OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT IS_ABSOLUTE "${file}")
    message(FATAL_ERROR "The compiler doesn't know where its ${name} is")
  endif()
  file(COPY "${file}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
endforeach()
