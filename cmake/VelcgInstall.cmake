include(CMakePackageConfigHelpers)

# Every header lies under include/velcg: the library's own at the top, the
# host platform's under include/velcg/host (each target names its include
# directory in its INSTALL_INTERFACE).
install(TARGETS velhost velcg EXPORT velcgTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/velcg DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_BINARY_DIR}/include/velcg/Version.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velcg)

# The runtime for Python templates joins the package (velcg::velcg_python);
# the module velcg and its type stub go to a site-packages folder under the
# prefix (add it to PYTHONPATH).
if(TARGET velcg_python)
  install(TARGETS velcg_python EXPORT velcgTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(TARGETS velcg_python_module LIBRARY DESTINATION ${VELCG_PYTHON_INSTALL_DIR})
  if(DEFINED VELCG_PYTHON_STUB)
    install(FILES ${VELCG_PYTHON_STUB} DESTINATION ${VELCG_PYTHON_INSTALL_DIR})
  endif()
endif()
install(DIRECTORY host/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velcg/host)

install(EXPORT velcgTargets NAMESPACE velcg:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velcg)
configure_package_config_file(cmake/velcgConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/velcgConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velcg)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/velcgConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velcgConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/velcgConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/VelcgGenerate.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/velcg)
