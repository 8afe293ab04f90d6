# Runs a client with the whole trace written raw to a file and compares the
# file with the expected lines.
#   cmake -DCLIENT=<program> -DEXPECTED=<file> -DACTUAL=<file> -P GoldenTrace.cmake
file(REMOVE ${ACTUAL})
execute_process(COMMAND ${CMAKE_COMMAND} -E env VXT_LOG_FILE=${ACTUAL} VXT_LOG_FORMAT=raw VXT_LOG_LEVEL=1
                        --unset=VXT_LOG_USAGE --unset=VXT_TELEMETRY_FILE ${CLIENT}
                RESULT_VARIABLE client_result OUTPUT_QUIET)
if(NOT client_result EQUAL 0)
  message(FATAL_ERROR "${CLIENT} exited with ${client_result}")
endif()
execute_process(COMMAND diff -u ${EXPECTED} ${ACTUAL} RESULT_VARIABLE diff_result)
if(NOT diff_result EQUAL 0)
  message(FATAL_ERROR "The trace differs from ${EXPECTED}")
endif()
