# A shared library's calls to its own functions go straight to them. Its exported functions are
# not meant to be interposed by a host; left interposable, every call between them inside the
# library goes through the PLT and none of them can be inlined into another.
function(velmor_bind_locally target)
  get_target_property(_type ${target} TYPE)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT EMSCRIPTEN)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
  if(_type STREQUAL "SHARED_LIBRARY" AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
  endif()
endfunction()
