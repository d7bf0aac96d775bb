# range-v3 for the WebAssembly build: Debian's headers, seen through a folder that holds them alone
# so that the compiler never meets the native C library's headers in /usr/include.
include(${CMAKE_CURRENT_LIST_DIR}/VelmorHostHeaders.cmake)
if(NOT TARGET range-v3::range-v3)
  add_library(range-v3::range-v3 INTERFACE IMPORTED)
  set_target_properties(range-v3::range-v3 PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${VELMOR_HOST_HEADERS})
endif()
set(range-v3_FOUND TRUE)
