# GTest::gtest and GTest::gtest_main: the distribution's libraries natively; for Windows, which has none, they
# are built from the distribution's sources.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
else()
  set(QUARN_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "Sources of GoogleTest, for cross-builds")
  if(NOT EXISTS ${QUARN_GOOGLETEST_SOURCES}/CMakeLists.txt)
    message(FATAL_ERROR "No sources of GoogleTest in ${QUARN_GOOGLETEST_SOURCES}. "
      "Install the package googletest or set QUARN_GOOGLETEST_SOURCES.")
  endif()
  block()
    set(BUILD_SHARED_LIBS OFF)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
    add_subdirectory(${QUARN_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    target_compile_options(gtest PRIVATE $<$<CONFIG:Release>:-O0>) # as the tests are
  endblock()
  if(NOT TARGET GTest::gtest)
    add_library(GTest::gtest ALIAS gtest)
    add_library(GTest::gtest_main ALIAS gtest_main)
  endif()
endif()
include(GoogleTest)
