# Sorts the sample log into classes and compares the answer with what it should be:
# cmake -D PROGRAM=... -D SAMPLE=... -D EXPECTED=... -D SCRATCH=... -P logclass.cmake
file(MAKE_DIRECTORY ${SCRATCH})

execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${SAMPLE} OUTPUT_FILE ${SCRATCH}/answer RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "logclass ${SAMPLE}: ${result}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files --ignore-eol ${SCRATCH}/answer ${EXPECTED}
  RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "${SCRATCH}/answer and ${EXPECTED} differ")
endif()

execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${SCRATCH}/missing.log RESULT_VARIABLE result ERROR_QUIET)
if(NOT result EQUAL 1)
  message(FATAL_ERROR "logclass without a file: ${result}, not 1")
endif()
