# nlohmann-json for the WebAssembly build: Debian's headers, alone in a folder (see range-v3-config).
include(${CMAKE_CURRENT_LIST_DIR}/VelmorHostHeaders.cmake)
if(NOT TARGET nlohmann_json::nlohmann_json)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
  set_target_properties(nlohmann_json::nlohmann_json PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${VELMOR_HOST_HEADERS})
endif()
set(nlohmann_json_FOUND TRUE)
