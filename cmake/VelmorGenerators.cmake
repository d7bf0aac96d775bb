# Build-time generation of the scanner (re2c 3.0) and the parser (bison 3.8).
find_program(RE2C_EXECUTABLE re2c)
find_program(BISON_EXECUTABLE bison)

if(NOT RE2C_EXECUTABLE)
  message(FATAL_ERROR "re2c 3.0 was not found. Run scripts/install-deps (Debian package 're2c').")
endif()
execute_process(COMMAND ${RE2C_EXECUTABLE} --version OUTPUT_VARIABLE _re2c_version OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT _re2c_version MATCHES "re2c 3\\.")
  message(FATAL_ERROR "re2c 3.x is required, found '${_re2c_version}'. Run scripts/install-deps.")
endif()

if(NOT BISON_EXECUTABLE)
  message(FATAL_ERROR "GNU Bison 3.8 was not found. Run scripts/install-deps (Debian package 'bison').")
endif()
execute_process(COMMAND ${BISON_EXECUTABLE} --version OUTPUT_VARIABLE _bison_version OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT _bison_version MATCHES "\\) 3\\.8")
  message(FATAL_ERROR "GNU Bison 3.8 is required, found '${_bison_version}'. Run scripts/install-deps.")
endif()

# velmor_re2c(<input.re> <output>): UTF-8 DFA, no dates or absolute paths in the output.
function(velmor_re2c input output)
  get_filename_component(_in ${input} ABSOLUTE)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${RE2C_EXECUTABLE} --utf8 -W --no-generation-date --no-version
            -I ${CMAKE_SOURCE_DIR}/src --depfile ${output}.d -o ${output} ${_in}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    DEPENDS ${_in}
    DEPFILE ${output}.d
    COMMENT "re2c ${input}"
    VERBATIM)
endfunction()

# velmor_bison(<input.yy> <output.cpp> <header.hpp> <report>): the automaton, with its report kept
# so that a test can check the automaton's size and conflicts.
# (Counterexamples are left out of the report: finding them for the expected conflicts takes minutes.)
function(velmor_bison input output header report)
  get_filename_component(_in ${input} ABSOLUTE)
  file(RELATIVE_PATH _rel ${CMAKE_SOURCE_DIR} ${_in})
  add_custom_command(
    OUTPUT ${output} ${header} ${report}
    COMMAND ${BISON_EXECUTABLE} -Wall -Wno-precedence --no-lines
            --defines=${header} --report=states,itemsets,lookaheads,solved --report-file=${report} -o ${output} ${_rel}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    DEPENDS ${_in}
    COMMENT "bison ${input}"
    VERBATIM)
endfunction()
