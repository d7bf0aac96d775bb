# Runs `velmor-sql tokens` on the golden input and on a few argument forms.
# -DTOOL=<velmor-sql> -DDATA=<tests/data/sqllexer> -DWORK=<scratch dir>
# With the environment variable VELMOR_UPDATE_GOLDEN set, rewrites the expected output.

function(expect_run)
  cmake_parse_arguments(R "" "NAME;INPUT;STATUS;STDOUT;STDERR_MATCH" "ARGS" ${ARGN})
  set(_input)
  if(R_INPUT)
    set(_input INPUT_FILE ${R_INPUT})
  endif()
  execute_process(COMMAND ${TOOL} ${R_ARGS} ${_input}
    RESULT_VARIABLE _status OUTPUT_VARIABLE _out ERROR_VARIABLE _err)
  if(NOT _status STREQUAL R_STATUS)
    message(SEND_ERROR "${R_NAME}: exit status ${_status}, expected ${R_STATUS}\n${_err}")
  endif()
  if(DEFINED R_STDOUT AND NOT _out STREQUAL R_STDOUT)
    message(SEND_ERROR "${R_NAME}: output\n${_out}\nexpected\n${R_STDOUT}")
  endif()
  if(R_STDERR_MATCH AND NOT _err MATCHES "${R_STDERR_MATCH}")
    message(SEND_ERROR "${R_NAME}: error output\n${_err}\ndoes not match ${R_STDERR_MATCH}")
  endif()
endfunction()

# The golden file: every rule of the scanner that shows in a listing.
set(_golden ${DATA}/cli-tokens.out)
if(DEFINED ENV{VELMOR_UPDATE_GOLDEN})
  execute_process(COMMAND ${TOOL} tokens INPUT_FILE ${DATA}/cli-tokens.sql OUTPUT_FILE ${_golden})
endif()
file(READ ${_golden} _expected)
expect_run(NAME golden ARGS tokens INPUT ${DATA}/cli-tokens.sql STATUS 0 STDOUT "${_expected}")
expect_run(NAME golden-dash ARGS tokens - INPUT ${DATA}/cli-tokens.sql STATUS 0 STDOUT "${_expected}")

# Arguments are joined by single blanks.
expect_run(NAME arguments ARGS tokens SELECT "a,b" FROM STATUS 0
  STDOUT "1:1 SELECT\n1:8 IDENTIFIER a\n1:9 UCS_0x00002C\n1:10 IDENTIFIER b\n1:12 FROM\n1:16 <TERMINATION>\n")
expect_run(NAME leading-minus ARGS tokens -1 STATUS 0
  STDOUT "1:1 UCS_0x00002D\n1:2 INTEGER_NUMBER 1\n1:3 <TERMINATION>\n")

# Usage errors.
expect_run(NAME unknown-option ARGS tokens --bogus STATUS 2 STDERR_MATCH "unknown option")
expect_run(NAME unknown-command ARGS nosuchcommand STATUS 2 STDERR_MATCH "unknown command")
expect_run(NAME help ARGS --help STATUS 0)

# A lexeme too long for the scanner's window.
file(MAKE_DIRECTORY ${WORK})
string(REPEAT "a" 140000 _long)
file(WRITE ${WORK}/long-lexeme.sql "${_long}")
expect_run(NAME long-lexeme ARGS tokens INPUT ${WORK}/long-lexeme.sql STATUS 2
  STDERR_MATCH "Distance between lexeme start and current pointer exceeds buffer size\\.")
