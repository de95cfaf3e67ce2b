# The views for debuggers: gdb looks at a program; the other file is checked as far as it can be without its debugger.
# The sanitizers and gdb get in each other's way.
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  return()
endif()

# Where the library has no debug information, the program has it for the library's classes too.
add_executable(views_subject debugger/subject.cpp)
target_link_libraries(views_subject PRIVATE QuarnUtil::QuarnUtil quarn_warnings)
target_compile_options(views_subject PRIVATE -g -O0 $<$<NOT:$<CONFIG:Debug>>:-femit-class-debug-always>)
set(views ${CMAKE_CURRENT_SOURCE_DIR}/debugger)
set(cases -ex "python cases = '${views}/views.txt'")

if(WIN32)
  find_program(QUARN_GDB x86_64-w64-mingw32-gdb REQUIRED)
  find_file(QUARN_GDBSERVER gdbserver.exe PATHS /usr/share/win64 REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  add_test(NAME Views.ShowWhatObjectsHold
    COMMAND ${views}/run-windows ${QUARN_WINE_PREFIX} ${QUARN_GDB} ${QUARN_GDBSERVER} $<TARGET_FILE:views_subject>
      -ex "source ${PROJECT_SOURCE_DIR}/debugger/quarn_gdb.py" ${cases} -x ${views}/check_views.py)
else()
  find_program(QUARN_GDB gdb REQUIRED)
  # The views as they are installed: in a folder that gdb trusts, by the name and the place of the library.
  set(trusted ${CMAKE_CURRENT_BINARY_DIR}/auto-load)
  set(name libQuarnUtil.so.${PROJECT_VERSION}-gdb.py)
  configure_file(${PROJECT_SOURCE_DIR}/debugger/quarn_gdb.py
    ${trusted}${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name} COPYONLY)
  add_test(NAME Views.ShowWhatObjectsHold
    COMMAND ${QUARN_GDB} -nx -batch -iex "set auto-load scripts-directory ${trusted}"
      -iex "set auto-load safe-path ${trusted}" -ex "python start = 'run'" ${cases} -x ${views}/check_views.py
      $<TARGET_FILE:views_subject>)
  add_test(NAME Views.OtherDebuggersFindWhatTheyName COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-natvis)
  add_test(NAME Views.WrongNamesAreRefused COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-natvis --self-test)
endif()
# Under Wine each look at the memory is a message to the server, and a busy machine makes them slow.
set_tests_properties(Views.ShowWhatObjectsHold PROPERTIES ${quarn_test_properties} TIMEOUT 300
  ENVIRONMENT LC_ALL=C.UTF-8)
