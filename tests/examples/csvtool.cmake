# Takes columns out of the sample table and compares them with what they should be:
# cmake -D PROGRAM=... -D SAMPLE=... -D EXPECTED=... -D SCRATCH=... -P csvtool.cmake
file(MAKE_DIRECTORY ${SCRATCH})

function(run expected_result)
  execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGN} RESULT_VARIABLE result ERROR_QUIET)
  if(NOT result EQUAL expected_result)
    message(FATAL_ERROR "csvtool ${ARGN}: ${result}, not ${expected_result}")
  endif()
endfunction()

function(same one two)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${one} ${two} RESULT_VARIABLE differs)
  if(differs)
    message(FATAL_ERROR "${one} and ${two} differ")
  endif()
endfunction()

# Columns by name whatever their case; blank lines, padding, quotes and short rows are dealt with.
run(0 -d "\;" -o "|" -c "opened, STATION,lines" ${SAMPLE} ${SCRATCH}/columns)
same(${SCRATCH}/columns ${EXPECTED})

# What has been cleaned once stays as it is.
run(0 -d "|" -o "|" ${SCRATCH}/columns ${SCRATCH}/again)
same(${SCRATCH}/again ${SCRATCH}/columns)

run(1 -d "\;" -c "height" ${SAMPLE} ${SCRATCH}/none)
