# Installs the built tree into a scratch prefix, then configures, builds and runs a consumer.
file(REMOVE_RECURSE ${WORK_DIR})
set(_prefix ${WORK_DIR}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${_prefix} --config ${CONFIG}
                RESULT_VARIABLE rc OUTPUT_QUIET)
if(rc)
  message(FATAL_ERROR "install failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer/project -B ${WORK_DIR}/build
                -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${_prefix} -DCMAKE_BUILD_TYPE=${CONFIG}
                RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "consumer configure failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "consumer build failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/build/consumer RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "consumer run failed: ${rc}")
endif()
# The pkg-config file must describe the same installation.
find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${_prefix}/lib/pkgconfig
                  ${PKG_CONFIG} --cflags --libs velmor-sql RESULT_VARIABLE rc OUTPUT_VARIABLE flags)
  if(rc OR NOT flags MATCHES "-lvelmor-sql")
    message(FATAL_ERROR "pkg-config velmor-sql failed: ${rc} ${flags}")
  endif()
endif()
