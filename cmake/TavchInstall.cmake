# cmake --install: the header, the libraries and tavgrep. Installed files find each other by their places.
if(NOT WIN32)
  set_target_properties(tavch tavcore PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
install(TARGETS tavch tavch_static tavcore
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/include/tavch.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES LICENSE NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(TARGET tavgrep)
  set_target_properties(tavgrep PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS tavgrep RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
