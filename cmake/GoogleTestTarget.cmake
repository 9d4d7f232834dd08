# tavch_gtest: GoogleTest with its main(). The system's package natively; built from Debian's source package
# (googletest) for Windows, where no package exists.
add_library(tavch_gtest INTERFACE)
if(CMAKE_CROSSCOMPILING)
  set(TAVCH_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  add_subdirectory(${TAVCH_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  target_link_libraries(tavch_gtest INTERFACE gtest gtest_main)
else()
  find_package(GTest REQUIRED)
  target_link_libraries(tavch_gtest INTERFACE GTest::gtest GTest::gtest_main)
endif()
