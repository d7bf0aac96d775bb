# Warning flags for our own sources; generated sources get relaxed flags separately.
function(velmor_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(VELMOR_SQL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# Generated scanner and parser sources: keep them quiet, never our own code.
function(velmor_relax_generated)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "-Wno-unused;-Wno-sign-compare;-Wno-implicit-fallthrough;-Wno-unused-parameter;-Wno-pedantic")
endfunction()
