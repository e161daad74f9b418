include(CMakePackageConfigHelpers)

# Every header lies under include/velcg: the library's own at the top, the
# host platform's under include/velcg/host (each target names its include
# directory in its INSTALL_INTERFACE).
install(TARGETS velhost velcg EXPORT velcgTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/velcg DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY host/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velcg/host)

install(EXPORT velcgTargets NAMESPACE velcg:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velcg)
configure_package_config_file(cmake/velcgConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/velcgConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velcg)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/velcgConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velcgConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/velcgConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velcg)
