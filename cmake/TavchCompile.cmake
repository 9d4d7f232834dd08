# Compiler settings shared by every target of the project.

set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(tavch_warnings INTERFACE)
target_compile_options(tavch_warnings INTERFACE -Wall -Wextra -Wconversion)
if(TAVCH_WERROR)
  target_compile_options(tavch_warnings INTERFACE -Werror)
endif()

if(TAVCH_SANITIZE)
  set(sanitizers address,undefined)
  if(TAVCH_SANITIZE MATCHES "^(thread|memory)$")
    set(sanitizers ${TAVCH_SANITIZE})
  endif()
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${sanitizers})
else()
  # Clang's sanitizers leave their run-time to the program.
  set(TAVCH_NO_UNDEFINED -Wl,--no-undefined)
endif()

if(TAVCH_COVERAGE)
  add_link_options(-fprofile-instr-generate)
endif()

# Coverage of every source that a fuzz target links; the fuzzer's own main is linked to the targets alone.
if(TAVCH_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# The library proper: no exceptions, no RTTI, nothing visible but the exports.
add_library(tavch_library_flags INTERFACE)
target_compile_options(tavch_library_flags INTERFACE
  -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fvisibility-inlines-hidden>)
target_link_libraries(tavch_library_flags INTERFACE tavch_warnings)
