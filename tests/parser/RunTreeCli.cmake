# Runs `velmor-sql tree` on a statement, an error and standard input. -DTOOL=<velmor-sql>
function(expect_run)
  cmake_parse_arguments(R "" "NAME;INPUT;STATUS;STDOUT_MATCH;STDERR" "ARGS" ${ARGN})
  set(_input)
  if(R_INPUT)
    set(_input INPUT_FILE ${R_INPUT})
  endif()
  execute_process(COMMAND ${TOOL} ${R_ARGS} ${_input}
    RESULT_VARIABLE _status OUTPUT_VARIABLE _out ERROR_VARIABLE _err)
  if(NOT _status STREQUAL R_STATUS)
    message(SEND_ERROR "${R_NAME}: exit status ${_status}, expected ${R_STATUS}\n${_err}")
  endif()
  if(R_STDOUT_MATCH AND NOT _out MATCHES "${R_STDOUT_MATCH}")
    message(SEND_ERROR "${R_NAME}: output\n${_out}\ndoes not match ${R_STDOUT_MATCH}")
  endif()
  if(DEFINED R_STDERR AND NOT _err STREQUAL R_STDERR)
    message(SEND_ERROR "${R_NAME}: error output\n${_err}\nexpected\n${R_STDERR}")
  endif()
endfunction()

expect_run(NAME statement ARGS tree SELECT a FROM t STATUS 0
  STDOUT_MATCH "\"node\": \"QuerySpecification\",\n  \"distinct\": false,\n  \"selectList\": " STDERR "")
expect_run(NAME error ARGS tree "SELECT a" STATUS 1 STDOUT_MATCH "^$"
  STDERR "syntax error, unexpected T_TERMINATION, expecting T_FROM or ',' at 1:9\n")
file(WRITE ${WORK}/tree-input.sql "UPDATE t SET a = 'été'")
expect_run(NAME stdin ARGS tree - INPUT ${WORK}/tree-input.sql STATUS 0
  STDOUT_MATCH "\"node\": \"UpdateStatement\".*\"value\": \"été\"" STDERR "")
