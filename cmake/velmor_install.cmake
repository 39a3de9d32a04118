include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS velmor_core EXPORT velmor_core_targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/velmor2 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT velmor_core_targets NAMESPACE velmor_core::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velmor_core)

configure_package_config_file(cmake/velmor_core-config.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/velmor_core-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velmor_core)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/velmor_core-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velmor_core-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/velmor_core-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velmor_core)

configure_file(cmake/velmor_core.pc.in ${CMAKE_CURRENT_BINARY_DIR}/velmor_core.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velmor_core.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# A Debian package of the library, its headers and the velmor tool.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velmor-core)
set(CPACK_PACKAGE_VENDOR "velmor_core developers")
set(CPACK_PACKAGE_CONTACT "velmor_core developers <velmor-core@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "Paths, files, configuration, text encodings, hashing and runtime services for desktop tools")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libboost1.81-dev")
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)
