# libzel exports its public names only: everything visible belongs to namespace zel and nothing to
# zel::kernels, apart from what the compiler emits for shared templates of the standard library.
# Input: NM, LIBRARY
execute_process(COMMAND ${NM} --dynamic --defined-only --demangle ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
set(count 0)
foreach(line IN LISTS symbols)
  if(line MATCHES "^[0-9a-f]+ [A-Z] " AND NOT line MATCHES "^[0-9a-f]+ [Vu] " AND NOT line MATCHES " W .*std::")
    math(EXPR count "${count} + 1")
    if(NOT line MATCHES "zel::" OR line MATCHES "zel::kernels")
      message(SEND_ERROR "exported: ${line}")
    endif()
  endif()
endforeach()
if(count LESS 100)
  message(FATAL_ERROR "only ${count} exported names: is the library stripped?")
endif()
