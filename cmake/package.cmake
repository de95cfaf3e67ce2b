# What `cmake --install` puts where: the library, its public headers, the CMake package, on Linux a pkg-config
# file. The installed tree can be moved as a whole.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QuarnUtil)

install(TARGETS QuarnUtil EXPORT QuarnUtilTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# The language modules lie beside the library.
install(TARGETS QuarnUtilDEU
  LIBRARY DESTINATION $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>)
install(EXPORT QuarnUtilTargets NAMESPACE QuarnUtil:: DESTINATION ${package_folder})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuarnUtilConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/QuarnUtilConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/QuarnUtilConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/package/QuarnUtilConfig.cmake
  ${PROJECT_BINARY_DIR}/package/QuarnUtilConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/quarn_resources.cmake
  DESTINATION ${package_folder})

if(NOT WIN32)
  set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  file(RELATIVE_PATH quarn_prefix_from_pkgconfig /${pkgconfig_folder} /)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/QuarnUtil.pc.in ${PROJECT_BINARY_DIR}/package/QuarnUtil.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/QuarnUtil.pc DESTINATION ${pkgconfig_folder})
endif()
