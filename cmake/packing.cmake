# What `cpack` makes of a build tree: a DEB on Linux, a ZIP for Windows, each with everything that is installed.

# Everything that goes into a package, and no more.
add_custom_target(packaged)
add_dependencies(packaged QuarnUtil QuarnUtilDEU)
if(TARGET quarn)
  add_dependencies(packaged quarn)
endif()

set(CPACK_PACKAGE_NAME QuarnUtil)
set(CPACK_PACKAGE_VENDOR QuarnUtil)
set(CPACK_PACKAGE_CONTACT "QuarnUtil maintainers <quarnutil@localhost>")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME QuarnUtil-${PROJECT_VERSION}-windows-x64)
else()
  # One package and not a pair for running and developing: headers and tools are a small part of it, and what a
  # station runs can then never be of another version than what its programs were built with.
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_PACKAGE_NAME quarnutil)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Strings with printf formatting, streams of binary records, settings trees kept
in XML files, a registry, packed times, distances and velocities with units,
for programs that run unattended for years. With headers and the CMake and
pkg-config packages to build programs, tools to look into what they write, and
the folder /var/lib/quarnutil, which the programs of the group quarnutil share.")
  # The libraries' packages come from what the binaries need; the group is made with adduser.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS adduser)
  # For building programs; the last compiles their resources.
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS "g++, cmake | pkg-config, binutils-mingw-w64-x86-64")
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/postinst
    ${PROJECT_SOURCE_DIR}/packaging/debian/postrm
    ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
endif()
include(CPack)
