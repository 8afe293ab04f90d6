# Fails unless the shared library's dynamic symbol table defines exactly the
# functions listed in the version script.
#   cmake -DLIBRARY=<path> -DEXPORTS_MAP=<path> -P CheckExports.cmake
execute_process(COMMAND nm -D --defined-only --format=just-symbols ${LIBRARY}
                OUTPUT_VARIABLE nm_output RESULT_VARIABLE nm_result)
if(NOT nm_result EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*" defined "${nm_output}")
list(SORT defined)

file(READ ${EXPORTS_MAP} map_text)
string(REGEX MATCH "global:([^}]*)local:" global_block "${map_text}")
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*" expected "${CMAKE_MATCH_1}")
list(SORT expected)

if(NOT defined STREQUAL expected)
  message(FATAL_ERROR "Exported symbols differ.\n  expected: ${expected}\n  found:    ${defined}")
endif()
list(LENGTH defined count)
message(STATUS "${count} exported functions, as listed")
