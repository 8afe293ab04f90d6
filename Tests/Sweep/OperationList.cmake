# Writes the list of every operation of every service interface, read from
# the public headers, as lines "VXT_SWEEP_OPERATION(<Service>, <Operation>)"
# for the sweep tests to expand. Run at configure time; a header that
# changes makes CMake run it again, so a new operation joins the sweep by
# being declared.
# vxt_write_operation_list(<output> [<parameters output>]) also writes the
# parameter names, in the same order, as lines "VXT_SWEEP_PARAMETERS(
# <Service>, <Operation>, "<name> <name> ...")": the types say what an
# argument is, the names say what it is for (a count, a timeout, an id).
function(vxt_write_operation_list output)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/Source/Framework/VXT/Public/IInternalService_*.h)
  set(lines "// Generated from the service interfaces; do not edit.\n")
  set(parameter_lines "${lines}")
  foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(REGEX MATCHALL "class IInternalService_[A-Za-z0-9]+ |virtual VXT_Result [A-Za-z0-9_]+\\([^;]*\\) = 0" tokens "${text}")
    set(service "")
    foreach(token IN LISTS tokens)
      if(token MATCHES "^class IInternalService_([A-Za-z0-9]+)")
        set(service ${CMAKE_MATCH_1})
      elseif(token MATCHES "^virtual VXT_Result ([A-Za-z0-9_]+)\\((.*)\\) = 0$" AND service)
        string(APPEND lines "VXT_SWEEP_OPERATION(${service}, ${CMAKE_MATCH_1})\n")
        set(operation ${CMAKE_MATCH_1})
        string(REPLACE "," ";" parameters "${CMAKE_MATCH_2}")
        set(names "")
        foreach(parameter IN LISTS parameters)
          # "char (*names)[SIZE]" is named inside its parentheses.
          if(parameter MATCHES "\\(\\*([A-Za-z0-9_]+)\\)")
            list(APPEND names ${CMAKE_MATCH_1})
          elseif(parameter MATCHES "([A-Za-z0-9_]+)[ \t\r\n]*$")
            list(APPEND names ${CMAKE_MATCH_1})
          endif()
        endforeach()
        list(JOIN names " " names)
        string(APPEND parameter_lines "VXT_SWEEP_PARAMETERS(${service}, ${operation}, \"${names}\")\n")
      endif()
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${output} CONTENT "${lines}")
  if(ARGC GREATER 1)
    file(CONFIGURE OUTPUT ${ARGV1} CONTENT "${parameter_lines}")
  endif()
endfunction()
