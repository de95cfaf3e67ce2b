# What `cmake --install` puts where: the library, its public headers, the CMake package, on Linux a pkg-config
# file, the documents. The installed tree can be moved as a whole. The components:
#   runtime         what a program needs that was built elsewhere
#   development     what a program is built with
#   tools           programs for the files that the library writes
#   documentation   documents and the examples' sources
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QuarnUtil)
set(QUARN_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/quarnutil) # of one spelling on both systems

install(TARGETS QuarnUtil EXPORT QuarnUtilTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
# The language modules lie beside the library.
install(TARGETS QuarnUtilDEU
  LIBRARY DESTINATION $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}> COMPONENT runtime)
install(EXPORT QuarnUtilTargets NAMESPACE QuarnUtil:: DESTINATION ${package_folder} COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuarnUtilConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/QuarnUtilConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/QuarnUtilConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/package/QuarnUtilConfig.cmake
  ${PROJECT_BINARY_DIR}/package/QuarnUtilConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/quarn_resources.cmake
  DESTINATION ${package_folder} COMPONENT development)

if(NOT WIN32)
  set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  file(RELATIVE_PATH quarn_prefix_from_pkgconfig /${pkgconfig_folder} /)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/QuarnUtil.pc.in ${PROJECT_BINARY_DIR}/package/QuarnUtil.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/QuarnUtil.pc
    DESTINATION ${pkgconfig_folder} COMPONENT development)
endif()

# Laid out as in the source tree, so that their links to one another hold.
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${QUARN_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${QUARN_INSTALL_DOCDIR} COMPONENT documentation
  FILES_MATCHING REGEX "/docs/.*[.](md|svg|png)$" REGEX "/examples/.*/.*|/zlib_compressor[.]h$"
  REGEX "/docs/site" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright DESTINATION ${QUARN_INSTALL_DOCDIR} COMPONENT runtime)

# The licences of what others have made and goes into the files, from the packages that it comes from.
function(install_licence name origin component)
  install(FILES ${origin} DESTINATION ${QUARN_INSTALL_DOCDIR}/licences RENAME ${name} COMPONENT ${component})
endfunction()
install_licence(README.md ${PROJECT_SOURCE_DIR}/packaging/licences.md runtime)
if(QUARN_BUILD_TOOLS)
  install_licence(CLI11.txt /usr/share/doc/libcli11-dev/copyright tools)
endif()
if(WIN32)
  install_licence(Xerces-C.txt /usr/share/doc/libxerces-c-dev/copyright runtime)
  install_licence(Xerces-C-NOTICE.txt /usr/share/doc/libxerces-c-dev/NOTICE runtime)
  install_licence(Apache-2.0.txt /usr/share/common-licenses/Apache-2.0 runtime)
  install_licence(GCC.txt /usr/share/doc/gcc-mingw-w64-base/copyright runtime)
  install_licence(GPL-3.txt /usr/share/common-licenses/GPL-3 runtime)
  install_licence(MinGW-w64.txt /usr/share/doc/mingw-w64-x86-64-dev/copyright runtime)
endif()
