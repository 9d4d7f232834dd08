# cmake --install: the headers, the libraries, the programs and the documents, and what finds them afterwards.
# Installed files find each other by their places, so that the installed tree may be moved.
# packaging/manifest.*.txt lists what is installed, with a word on each file; tests compare the two.
include(CMakePackageConfigHelpers)

set(TAVCH_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tavch)
if(WIN32)
  # The layout of a zip: its user unpacks it and looks around.
  set(TAVCH_DOC_DIR docs)
  set(TAVCH_TOP_DIR .)
  set(TAVCH_PYTHON_DIR python)
  set(manifest ${PROJECT_SOURCE_DIR}/packaging/manifest.windows.txt)
else()
  set(TAVCH_DOC_DIR ${CMAKE_INSTALL_DOCDIR})
  set(TAVCH_TOP_DIR ${CMAKE_INSTALL_DOCDIR})
  # Debian's place for modules of the system's Python, when the prefix is /usr.
  set(TAVCH_PYTHON_DIR lib/python3/dist-packages)
  set(manifest ${PROJECT_SOURCE_DIR}/packaging/manifest.linux.txt)
  set_target_properties(tavch tavcore PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()

install(TARGETS tavch tavch_static tavcore EXPORT tavch-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/tavch.h include/tavch.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
foreach(target IN ITEMS tavch tavcore)
  get_target_property(microsoft_library ${target} TAVCH_MICROSOFT_LIBRARY)
  if(microsoft_library)
    install(FILES ${microsoft_library} DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()
endforeach()

install(EXPORT tavch-targets NAMESPACE tavch:: DESTINATION ${TAVCH_CONFIG_DIR})
configure_package_config_file(cmake/tavch-config.cmake.in tavch-config.cmake
  INSTALL_DESTINATION ${TAVCH_CONFIG_DIR} PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(tavch-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tavch-config.cmake ${PROJECT_BINARY_DIR}/tavch-config-version.cmake
  DESTINATION ${TAVCH_CONFIG_DIR})

# One file for each way of linking, so that the user of either needs no further flag.
file(RELATIVE_PATH TAVCH_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" TAVCH_PC_PREFIX ${TAVCH_PC_PREFIX})
set(TAVCH_PC_LIBS "-ltavch")
configure_file(cmake/tavch.pc.in tavch.pc @ONLY)
set(TAVCH_PC_LIBS "-ltavch_static -ltavcore")
configure_file(cmake/tavch.pc.in tavch-static.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tavch.pc ${PROJECT_BINARY_DIR}/tavch-static.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

foreach(program IN ITEMS tavgrep tavexplain)
  if(TARGET ${program})
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

install(FILES python/tavch.py DESTINATION ${TAVCH_PYTHON_DIR})

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${manifest})
file(READ ${manifest} TAVCH_CONTENTS)
configure_file(packaging/README.txt.in README.txt @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/README.txt LICENSE NOTICE CHANGELOG.md SECURITY.md
  ${PROJECT_BINARY_DIR}/tavch.spdx.json DESTINATION ${TAVCH_TOP_DIR})

# The list of components. Its time is that of SOURCE_DATE_EPOCH where that is set.
string(TIMESTAMP TAVCH_SBOM_TIME "%Y-%m-%dT%H:%M:%SZ" UTC)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS include/tavch.h include/tavch.hpp)
file(SHA256 ${PROJECT_SOURCE_DIR}/include/tavch.h TAVCH_HASH_H)
file(SHA256 ${PROJECT_SOURCE_DIR}/include/tavch.hpp TAVCH_HASH_HPP)
configure_file(cmake/tavch.spdx.json.in tavch.spdx.json @ONLY)

# script/docs makes the man pages.
set(TAVCH_MAN_PAGES "" CACHE PATH "Folder of man pages to install")
if(TAVCH_MAN_PAGES AND NOT WIN32)
  install(DIRECTORY ${TAVCH_MAN_PAGES}/ DESTINATION ${CMAKE_INSTALL_MANDIR})
endif()
# What users read; the pages for those who change the library stay in the repository.
set(TAVCH_PAGES getting-started patterns replacement errors limits threads tavexplain internals)
list(TRANSFORM TAVCH_PAGES REPLACE "(.+)" "docs/\\1.md" OUTPUT_VARIABLE pages)
install(FILES ${pages} DESTINATION ${TAVCH_DOC_DIR})

# cpack makes the packages.
set(CPACK_PACKAGE_VENDOR "tavch")
set(CPACK_PACKAGE_CONTACT "tavch <tavch@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${PROJECT_BINARY_DIR}/README.txt)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_RESOURCE_FILE_README ${PROJECT_BINARY_DIR}/README.txt)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  # The programs and the DLLs are linked without symbols: stripping them later would write the time into them.
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME tavch-${PROJECT_VERSION}-windows-x86_64)
else()
  set(CPACK_STRIP_FILES ON)
  set(CPACK_GENERATOR TGZ DEB)
  set(CPACK_PACKAGE_FILE_NAME tavch-${PROJECT_VERSION}-linux-x86_64)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  find_program(TAVCH_SHLIBDEPS dpkg-shlibdeps)
  if(TAVCH_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/core)
  else()
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6")
  endif()
endif()
include(CPack)
