# Holds the README to the library: its example compiles, links and prints what the README says; its table of
# functions has every export in one of its rows and nothing that is not exported.
#
#   cmake -DREADME=... -DEXPORTS=... -DEXAMPLE=program [-DEMULATOR=...] -P readme_test.cmake   checks
#   cmake -DREADME=... -DOUTPUT=file.c -P readme_test.cmake                                   extracts the example

file(READ ${README} readme)

function(fenced language result)
  string(REGEX MATCH "\n```${language}\n([^`]*)```" ignored "${readme}")
  set(${result} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

if(OUTPUT)
  fenced(c example)
  file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "${example}" @ONLY)
  return()
endif()

fenced(text expected)
execute_process(COMMAND ${EMULATOR} ${EXAMPLE} OUTPUT_VARIABLE printed RESULT_VARIABLE status)
string(REPLACE "\r\n" "\n" printed "${printed}")
if(NOT status EQUAL 0 OR NOT printed STREQUAL expected)
  message(SEND_ERROR "The README's example ends with status ${status} and prints\n${printed}")
endif()

string(REGEX MATCHALL "`tavc?[hs][A-Z][A-Za-z0-9_]*[*]?`" listed "${readme}")
list(REMOVE_DUPLICATES listed)
file(STRINGS ${EXPORTS} exports)
list(TRANSFORM exports REPLACE "^[0-9]+ " "")
set(described "")
foreach(entry IN LISTS listed)
  string(REGEX REPLACE "[`*]" "" stem ${entry})
  set(members ${exports})
  if(entry MATCHES "[*]")
    list(FILTER members INCLUDE REGEX "^${stem}")
  else()
    list(FILTER members INCLUDE REGEX "^${stem}$")
  endif()
  if(NOT members)
    message(SEND_ERROR "The README speaks of ${entry}, which is not exported")
  endif()
  list(APPEND described ${members})
endforeach()
list(REMOVE_ITEM exports ${described})
if(exports)
  message(SEND_ERROR "The README's table lacks ${exports}")
endif()
