# Writes the list of every operation of every service interface, read from
# the public headers, as lines "VXT_SWEEP_OPERATION(<Service>, <Operation>)"
# for the sweep tests to expand. Run at configure time; a header that
# changes makes CMake run it again, so a new operation joins the sweep by
# being declared.
function(vxt_write_operation_list output)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/Source/Framework/VXT/Public/IInternalService_*.h)
  set(lines "// Generated from the service interfaces; do not edit.\n")
  foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(REGEX MATCHALL "class IInternalService_[A-Za-z0-9]+ |virtual VXT_Result [A-Za-z0-9_]+\\(" tokens "${text}")
    set(service "")
    foreach(token IN LISTS tokens)
      if(token MATCHES "^class IInternalService_([A-Za-z0-9]+)")
        set(service ${CMAKE_MATCH_1})
      elseif(token MATCHES "^virtual VXT_Result ([A-Za-z0-9_]+)\\(" AND service)
        string(APPEND lines "VXT_SWEEP_OPERATION(${service}, ${CMAKE_MATCH_1})\n")
      endif()
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${output} CONTENT "${lines}")
endfunction()
