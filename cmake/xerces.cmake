# XercesC::XercesC: the distribution's library natively; for Windows the static one that
# scripts/xerces-for-windows builds. Nothing is downloaded or built from here.
if(CMAKE_CROSSCOMPILING AND WIN32)
  if(NOT QUARN_XERCES_PREFIX)
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/xerces-for-windows --where
      OUTPUT_VARIABLE QUARN_XERCES_PREFIX OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
  if(NOT EXISTS "${QUARN_XERCES_PREFIX}/lib/libxerces-c.a")
    message(FATAL_ERROR "There is no Xerces-C for Windows in '${QUARN_XERCES_PREFIX}'.\n"
      "Build it once with scripts/xerces-for-windows, or set QUARN_XERCES_PREFIX to the prefix of a static "
      "Xerces-C 3.2 that was built with cmake/windows-mingw.cmake.")
  endif()
  list(APPEND CMAKE_FIND_ROOT_PATH ${QUARN_XERCES_PREFIX})
endif()
find_package(XercesC 3.2 REQUIRED)
