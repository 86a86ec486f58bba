# What `cmake --install` gives: the headers, the library, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set_target_properties(pixmorph PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
set(PIXMORPH_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/pixmorph)

install(TARGETS pixmorph EXPORT pixmorph-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/pixmorph DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
# The Python package is a matter of the platform's paths for Python; beside the data it is found by PYTHONPATH.
install(DIRECTORY python/pixmorph DESTINATION ${CMAKE_INSTALL_DATADIR}/pixmorph/python PATTERN "__pycache__" EXCLUDE)
install(EXPORT pixmorph-targets NAMESPACE pixmorph:: DESTINATION ${PIXMORPH_PACKAGE_DIR})

configure_package_config_file(cmake/pixmorph-config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/pixmorph-config.cmake
  INSTALL_DESTINATION ${PIXMORPH_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/pixmorph-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pixmorph-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/pixmorph-config-version.cmake
  DESTINATION ${PIXMORPH_PACKAGE_DIR})

# The prefix is known only when installing, where it may differ from the configured one, so the file is written then.
install(CODE "
  set(PROJECT_VERSION \"${PROJECT_VERSION}\")
  set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
  set(PIXMORPH_PC_LIBDIR \"\\\${exec_prefix}/${CMAKE_INSTALL_LIBDIR}\")
  set(PIXMORPH_PC_INCLUDEDIR \"\\\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}\")
  get_filename_component(CMAKE_INSTALL_PREFIX \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
  configure_file(\"${CMAKE_CURRENT_SOURCE_DIR}/cmake/pixmorph.pc.in\" \"${CMAKE_CURRENT_BINARY_DIR}/pixmorph.pc\" @ONLY)
")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pixmorph.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
