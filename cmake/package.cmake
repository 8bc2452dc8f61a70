# What another host is built with: the headers of the interface, and where an installed tree keeps them and the
# plug-in, as a CMake package and for pkg-config. Both find their tree from their own place, so that it may move.
include(CMakePackageConfigHelpers)

set(KEPLO_COMPONENT_PLACE ${CMAKE_INSTALL_LIBDIR}/keplo/inputkeplo.so)
set(package_place ${CMAKE_INSTALL_LIBDIR}/cmake/keplo)
configure_package_config_file(cmake/keploConfig.cmake.in keploConfig.cmake
  INSTALL_DESTINATION ${package_place}
  PATH_VARS KEPLO_COMPONENT_PLACE CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(keploConfigVersion.cmake COMPATIBILITY SameMajorVersion)

file(RELATIVE_PATH KEPLO_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/keplo.pc.in keplo.pc @ONLY)

install(DIRECTORY src/host/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/keplo FILES_MATCHING PATTERN *.h)
install(FILES ${CMAKE_BINARY_DIR}/keploConfig.cmake ${CMAKE_BINARY_DIR}/keploConfigVersion.cmake
        DESTINATION ${package_place})
install(FILES ${CMAKE_BINARY_DIR}/keplo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
