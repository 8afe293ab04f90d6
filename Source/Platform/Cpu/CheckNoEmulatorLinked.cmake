# Fails when LIBRARY needs the CPU emulator's library (directly or through
# another library): it is GPL and must be reached only through the engine
# module at run time. Run with cmake -P -DLIBRARY=<path>.
execute_process(COMMAND readelf -d "${LIBRARY}" OUTPUT_VARIABLE dynamic RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "readelf could not read ${LIBRARY}")
endif()
execute_process(COMMAND ldd "${LIBRARY}" OUTPUT_VARIABLE loaded)
if(dynamic MATCHES "unicorn|VoxtrelCpuEngine" OR loaded MATCHES "unicorn|VoxtrelCpuEngine")
  message(FATAL_ERROR "${LIBRARY} links the CPU emulator; it must be loaded at run time only")
endif()
