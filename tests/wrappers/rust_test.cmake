# Builds and runs the Rust example in a copy, since cargo writes beside its sources.
#   cmake -DCARGO=... -DSOURCE=examples/rust -DLIBRARY=folder -DSCRATCH=folder -P rust_test.cmake
file(REMOVE_RECURSE ${SCRATCH})
file(COPY ${SOURCE}/ DESTINATION ${SCRATCH})
set(ENV{TAVCH_LIB_DIR} ${LIBRARY})
set(ENV{CARGO_TARGET_DIR} ${SCRATCH}/target)
execute_process(COMMAND ${CARGO} run --quiet --offline WORKING_DIRECTORY ${SCRATCH}
  OUTPUT_VARIABLE printed ERROR_VARIABLE complaints RESULT_VARIABLE status)
set(expected "0: ABBBc at 2\n1: BBB at 3\nxx<BBB>yy <b>\n800\nstatus -186 at byte 3\n")
if(NOT status EQUAL 0 OR NOT printed STREQUAL expected)
  message(FATAL_ERROR "The example ends with status ${status} and prints\n${printed}${complaints}")
endif()
