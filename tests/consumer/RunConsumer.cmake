# Installs the built tree into a scratch prefix, then builds and runs consumers against it: a CMake
# project (a host of its own, and the host guide's example on the kit), a pkg-config build of the
# example, and the installed tool, also after the whole installation has been moved.
file(REMOVE_RECURSE ${WORK_DIR})
set(_prefix ${WORK_DIR}/opt/velmor)

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(rc)
    message(FATAL_ERROR "${what} failed: ${rc}\n${out}\n${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

run("install" ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${_prefix} --config ${CONFIG})

# The example is the one code block between the markers of the guide.
file(READ ${SOURCE_DIR}/docs/host-guide.md _guide)
string(REGEX MATCH "<!-- example: gis-host.cpp -->\n```cpp\n(.*)\n```\n<!-- end of example -->" _ "${_guide}")
if(NOT CMAKE_MATCH_1)
  message(FATAL_ERROR "docs/host-guide.md: the example block is missing")
endif()
file(WRITE ${WORK_DIR}/example/gis-host.cpp "${CMAKE_MATCH_1}\n")

run("consumer configure" ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer/project -B ${WORK_DIR}/build
    -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${_prefix} -DCMAKE_BUILD_TYPE=${CONFIG}
    -DCMAKE_CXX_COMPILER=${CXX} -DEXAMPLE_SOURCE=${WORK_DIR}/example/gis-host.cpp)
run("consumer build" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run("consumer run" ${WORK_DIR}/build/consumer)
run("host guide example" ${WORK_DIR}/build/gis-host)
if(NOT output MATCHES "  ha: Double\n")
  message(FATAL_ERROR "host guide example: unexpected output\n${output}")
endif()

function(check_installation prefix)
  # The tool starts from wherever it lies, without a library path.
  run("installed tool in ${prefix}" ${prefix}/bin/velmor-sql format "select (a+b)*c from t")
  if(NOT output STREQUAL "SELECT (a + b) * c FROM t\n")
    message(FATAL_ERROR "installed tool: unexpected output: ${output}")
  endif()
  find_program(PKG_CONFIG pkg-config)
  if(NOT PKG_CONFIG)
    return()
  endif()
  foreach(_pc velmor-sql velmor-sql-host)
    run("pkg-config ${_pc}" ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig
        ${PKG_CONFIG} --cflags --libs ${_pc})
    string(STRIP "${output}" flags)
    # The paths are relative to the .pc file; they must lead into this prefix.
    string(REGEX MATCH "-I([^ ]+)" _ "${flags}")
    get_filename_component(_include "${CMAKE_MATCH_1}" REALPATH)
    string(REGEX MATCH "-L([^ ]+)" _ "${flags}")
    get_filename_component(_lib "${CMAKE_MATCH_1}" REALPATH)
    get_filename_component(_real "${prefix}" REALPATH)
    # The language standard is the consumer's to choose: a flag here would override it.
    if(NOT _include STREQUAL "${_real}/include" OR NOT _lib STREQUAL "${_real}/${LIBDIR}" OR NOT flags MATCHES "-l${_pc}( |$)"
       OR flags MATCHES "-std=")
      message(FATAL_ERROR "pkg-config ${_pc} in ${prefix}: ${flags}")
    endif()
  endforeach()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  # A consumer on a later standard than the library's own.
  run("pkg-config build in ${prefix}" ${CXX} -std=c++23 ${WORK_DIR}/example/gis-host.cpp ${flags} -o ${WORK_DIR}/gis-host-pc)
  run("pkg-config build run" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${WORK_DIR}/gis-host-pc)
endfunction()

check_installation(${_prefix})
file(RENAME ${WORK_DIR}/opt ${WORK_DIR}/moved)
check_installation(${WORK_DIR}/moved/velmor)
