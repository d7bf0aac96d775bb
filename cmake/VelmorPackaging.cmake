# Installation: headers, the library and the host kit, the CMake package (velmor::sql, component
# host for velmor::sql-host) and one pkg-config file for each.
include(CMakePackageConfigHelpers)

set(VELMOR_SQL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/velmor-sql)

install(TARGETS velmor-sql EXPORT velmor-sql-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT velmor-sql-targets NAMESPACE velmor:: DESTINATION ${VELMOR_SQL_CMAKE_DIR})
install(TARGETS velmor-sql-host EXPORT velmor-sql-host-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT velmor-sql-host-targets NAMESPACE velmor:: DESTINATION ${VELMOR_SQL_CMAKE_DIR})

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/velmor-sql-config.cmake.in
  ${PROJECT_BINARY_DIR}/velmor-sql-config.cmake
  INSTALL_DESTINATION ${VELMOR_SQL_CMAKE_DIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/velmor-sql-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/velmor-sql-config.cmake
  ${PROJECT_BINARY_DIR}/velmor-sql-config-version.cmake
  DESTINATION ${VELMOR_SQL_CMAKE_DIR})

# The .pc files find the prefix from where they lie, so the installation may move.
set(_pcdir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH VELMOR_PC_TO_PREFIX ${CMAKE_INSTALL_PREFIX}/${_pcdir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" VELMOR_PC_TO_PREFIX "${VELMOR_PC_TO_PREFIX}")
foreach(_pc sql host)
  if(_pc STREQUAL "sql")
    set(VELMOR_PC_NAME velmor-sql)
    set(VELMOR_PC_DESCRIPTION "${PROJECT_DESCRIPTION}")
    set(VELMOR_PC_REQUIRES "")
    set(VELMOR_PC_CFLAGS "")
    if(NOT BUILD_SHARED_LIBS)
      set(VELMOR_PC_CFLAGS "-DVELMOR_SQL_STATIC")
    endif()
  else()
    set(VELMOR_PC_NAME velmor-sql-host)
    set(VELMOR_PC_DESCRIPTION "Host kit of velmor-sql: in-memory catalogue, standard SQL set, catalogue files")
    set(VELMOR_PC_REQUIRES "velmor-sql = ${PROJECT_VERSION}")
    set(VELMOR_PC_CFLAGS "")
    if(NOT BUILD_SHARED_LIBS)
      set(VELMOR_PC_CFLAGS "-DVELMOR_SQL_HOST_STATIC")
    endif()
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/velmor-sql.pc.in ${PROJECT_BINARY_DIR}/${VELMOR_PC_NAME}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${VELMOR_PC_NAME}.pc DESTINATION ${_pcdir})
endforeach()
