# Converts the sample to UTF-16 and back in blocks of many sizes: cmake -D PROGRAM=... -D SAMPLE=... -D SCRATCH=...
# -P tavconv.cmake. What the sample is in UTF-16 is known from another converter.
set(sha256_utf-16le bdd03bf5443c3dd9e2fbef6fa2347f31b71ad80b6e28969a4d4b50bec79762cd)
set(sha256_utf-16be 66394143140f132fffdc51e56e3849108c4d8e2871fb8ea092aa8e5230a6316a)

set(sizes 1 2 3 5 16 61 100000)
if(EMULATOR)
  set(sizes 3) # starting a program takes seconds there
endif()

file(MAKE_DIRECTORY ${SCRATCH})

function(run)
  execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "tavconv ${ARGN}: ${result}")
  endif()
endfunction()

foreach(encoding IN ITEMS utf-16le utf-16be)
  foreach(size IN LISTS sizes)
    run(-b ${size} utf-8 ${encoding} ${SAMPLE} ${SCRATCH}/wide)
    file(SHA256 ${SCRATCH}/wide sum)
    if(NOT sum STREQUAL sha256_${encoding})
      message(FATAL_ERROR "${encoding} in blocks of ${size} bytes: wrong output")
    endif()
    run(-b ${size} ${encoding} utf-8 ${SCRATCH}/wide ${SCRATCH}/back)
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${SAMPLE} ${SCRATCH}/back RESULT_VARIABLE differs)
    if(differs)
      message(FATAL_ERROR "back from ${encoding} in blocks of ${size} bytes: another text")
    endif()
  endforeach()
endforeach()
