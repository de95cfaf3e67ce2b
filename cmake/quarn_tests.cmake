# How tests are declared; tests/CMakeLists.txt says which there are.
set(quarn_test_properties TIMEOUT 120)
if(WIN32 AND CMAKE_CROSSCOMPILING)
  include(wine)
  list(APPEND quarn_test_properties FIXTURES_REQUIRED wine)
endif()
if(QUARN_BUILD_TESTS)
  include(googletest)
endif()

function(quarn_set_test_options name)
  target_link_libraries(${name} PRIVATE GTest::gtest GTest::gtest_main quarn_warnings)
  # The library is optimised where it ships; its tests need not be, and are built in half the time.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O0>)
  if(WIN32)
    target_compile_options(${name} PRIVATE -Wa,-mbig-obj)
  endif()
  if(QUARN_COVERAGE) # of the tests' own code, what they take from the library's headers
    target_compile_options(${name} PRIVATE --coverage -fprofile-filter-files=/quarn/.*[.]h$)
    target_link_options(${name} PRIVATE --coverage)
  endif()
endfunction()

# quarn_run_tests(name "prefix" [property value]...): each test in a process of its own or, where processes are slow to
# start, all in one, which leaves its results in results/<prefix><name>.xml.
function(quarn_run_tests name prefix)
  set(properties ${quarn_test_properties} ${ARGN})
  if(QUARN_TESTS_BY_PROGRAM)
    set(test ${prefix}${name})
    # By a relative path: a Windows program takes no other without a drive.
    file(RELATIVE_PATH results ${CMAKE_CURRENT_BINARY_DIR} ${PROJECT_BINARY_DIR}/results)
    add_test(NAME ${test} COMMAND ${name} --gtest_output=xml:${results}/${test}.xml)
    string(REPLACE "TIMEOUT;120" "TIMEOUT;300" properties "${properties}")
    # The long ones come first, or one of them is alone at the end.
    if(name MATCHES "^(fault|xml|property|xml_private|registry_process|reliability|tool)_test$")
      list(APPEND properties COST 100)
    endif()
    set_tests_properties(${test} PROPERTIES WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} ${properties})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_PREFIX "${prefix}"
      WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} PROPERTIES ${properties})
  endif()
endfunction()

function(quarn_discover_tests name)
  quarn_set_test_options(${name})
  # Half of the time that a test takes to compile is this header, so it is compiled once for all programs.
  if(NOT TARGET quarn_test_header)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/test_header.cpp CONTENT "")
    add_library(quarn_test_header OBJECT ${PROJECT_BINARY_DIR}/test_header.cpp)
    quarn_set_test_options(quarn_test_header)
    target_precompile_headers(quarn_test_header PRIVATE <gtest/gtest.h>)
  endif()
  target_precompile_headers(${name} REUSE_FROM quarn_test_header)
  # Several files at once, in half the time.
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE QUARN_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  if(QUARN_COVERAGE) # each program's counts in a folder of their own
    set_property(TARGET ${name} PROPERTY CROSSCOMPILING_EMULATOR
      ${CMAKE_COMMAND} -E env GCOV_PREFIX=${PROJECT_BINARY_DIR}/coverage/${name})
  endif()
  quarn_run_tests(${name} "")
endfunction()

# quarn_add_test(name source...): a program linked to the library as a client is.
function(quarn_add_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE QuarnUtil::QuarnUtil)
  quarn_discover_tests(${name})
endfunction()

# quarn_use_german_locale(name): what tests/german_locale.h needs. None has to be installed: one is made.
function(quarn_use_german_locale name)
  if(WIN32)
    return()
  endif()
  set(locales ${PROJECT_BINARY_DIR}/locales)
  if(NOT TARGET quarn_german_locale)
    find_program(QUARN_LOCALEDEF localedef REQUIRED)
    add_custom_command(OUTPUT ${locales}/de_DE.UTF-8/LC_TIME
      COMMAND ${CMAKE_COMMAND} -E make_directory ${locales}
      COMMAND ${QUARN_LOCALEDEF} -i de_DE -f UTF-8 ${locales}/de_DE.UTF-8
      VERBATIM)
    add_custom_target(quarn_german_locale DEPENDS ${locales}/de_DE.UTF-8/LC_TIME)
  endif()
  add_dependencies(${name} quarn_german_locale)
  target_compile_definitions(${name} PRIVATE QUARN_TEST_LOCALES="${locales}")
endfunction()

# quarn_private_test(name source...): a program made of the library's objects, which may include private
# headers. It sees an empty QUARN_API.
function(quarn_private_test name)
  add_executable(${name} ${ARGN} $<TARGET_OBJECTS:quarn_objects>)
  target_compile_definitions(${name} PRIVATE QUARN_STATIC)
  target_link_libraries(${name} PRIVATE ${quarn_dependencies})
  quarn_discover_tests(${name})
endfunction()

# quarn_add_compile_failure_test(name source "regular expression" [macro]): the source compiles as it is, and
# fails with the macro (MUST_NOT_COMPILE) defined, with a match in the compiler's output. A source with
# several wrong lines has a macro, and a test, for each.
function(quarn_add_compile_failure_test name source expected)
  set(macro MUST_NOT_COMPILE)
  if(ARGC GREATER 3)
    set(macro ${ARGV3})
  endif()
  get_filename_component(source ${source} ABSOLUTE)
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -DCOMPILER=${CMAKE_CXX_COMPILER} -DSOURCE=${source}
    -DMACRO=${macro} -DEXPECTED=${expected} "-DFLAGS=-std=c++20 -Wall -Wextra -I${PROJECT_SOURCE_DIR}"
    -P ${PROJECT_SOURCE_DIR}/cmake/compile_failure.cmake)
endfunction()
