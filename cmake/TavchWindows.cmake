# What the DLLs need beyond what MinGW does by itself.

# A release carries no symbols, the addresses of the image are chosen anew at each start, its data is never executed, and two
# links of the same objects give the same file.
add_library(tavch_dll_flags INTERFACE)
target_link_options(tavch_dll_flags INTERFACE -static-libgcc -static-libstdc++
  -Wl,--dynamicbase,--high-entropy-va,--nxcompat,--no-insert-timestamp $<$<NOT:$<CONFIG:Debug>>:-s>)

# tavch_microsoft_import_library(TARGET DEFINITION) makes TARGET.lib, for Microsoft's linker, beside libTARGET.dll.a.
# The two differ in kind: GNU's tools do not write Microsoft's short form.
find_program(TAVCH_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 DOC "Makes import libraries for Microsoft's linker")
function(tavch_microsoft_import_library target definition)
  if(NOT TAVCH_LLVM_DLLTOOL)
    message(STATUS "No llvm-dlltool: ${target}.lib, the import library for Microsoft's linker, is not made")
    return()
  endif()
  set(library ${CMAKE_CURRENT_BINARY_DIR}/${target}.lib)
  add_custom_command(OUTPUT ${library}
    COMMAND ${TAVCH_LLVM_DLLTOOL} --machine i386:x86-64 --input-def ${definition} --output-lib ${library}
    DEPENDS ${definition} VERBATIM)
  add_custom_target(${target}_lib ALL DEPENDS ${library})
  set_property(TARGET ${target} PROPERTY TAVCH_MICROSOFT_LIBRARY ${library})
endfunction()
