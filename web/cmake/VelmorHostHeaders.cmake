# A folder in the build tree with links to the header-only libraries installed under /usr/include.
set(VELMOR_HOST_HEADERS ${CMAKE_BINARY_DIR}/host-headers)
if(NOT EXISTS ${VELMOR_HOST_HEADERS})
  file(MAKE_DIRECTORY ${VELMOR_HOST_HEADERS})
  foreach(_dir range meta concepts std nlohmann)
    file(CREATE_LINK /usr/include/${_dir} ${VELMOR_HOST_HEADERS}/${_dir} SYMBOLIC)
  endforeach()
endif()
