# Installation: headers, library, CMake package (velmor::sql) and pkg-config file.
include(CMakePackageConfigHelpers)

set(VELMOR_SQL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/velmor-sql)

install(TARGETS velmor-sql EXPORT velmor-sql-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT velmor-sql-targets NAMESPACE velmor:: DESTINATION ${VELMOR_SQL_CMAKE_DIR})

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

if(BUILD_SHARED_LIBS)
  set(VELMOR_SQL_PC_CFLAGS "")
else()
  set(VELMOR_SQL_PC_CFLAGS "-DVELMOR_SQL_STATIC")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/velmor-sql.pc.in ${PROJECT_BINARY_DIR}/velmor-sql.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmor-sql.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
