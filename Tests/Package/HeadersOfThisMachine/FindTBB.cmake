# As FindBoost.cmake: what is used of TBB is headers.
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/headers")
file(CREATE_LINK /usr/include/tbb "${CMAKE_BINARY_DIR}/headers/tbb" SYMBOLIC)
file(CREATE_LINK /usr/include/oneapi "${CMAKE_BINARY_DIR}/headers/oneapi" SYMBOLIC)
add_library(TBB::tbb INTERFACE IMPORTED)
target_include_directories(TBB::tbb SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/headers")
set(TBB_FOUND TRUE)
