# Installs a build into a folder of its own and builds and runs the client project against it.
#   BUILD      the build tree to install       SOURCE  the client project
#   WORK       a folder, emptied first         LIBDIR  where libraries are below the prefix
#   COMPILER, FLAGS, TYPE, TOOLCHAIN           as the library was built
#   EMULATOR   what runs the client, empty where it runs by itself
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    string(JOIN " " command ${ARGV})
    message("${output}")
    message(FATAL_ERROR "${command}: ${result}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
# Moved after installing and built from a copy: neither tree is found by an absolute or relative path.
set(prefix ${WORK}/prefix)
file(RENAME ${WORK}/installed ${prefix})
file(COPY ${SOURCE}/ DESTINATION ${WORK}/client)

run(${CMAKE_COMMAND} -S ${WORK}/client -B ${WORK}/build -G Ninja -DCMAKE_BUILD_TYPE=${TYPE}
  -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS}
  -DQuarnUtil_DIR=${prefix}/${LIBDIR}/cmake/QuarnUtil
  -DFIRST=${CMAKE_CURRENT_LIST_DIR}/../examples/first)
run(${CMAKE_COMMAND} --build ${WORK}/build)

# Counts a run; the record's bytes are those that docs/first-program.md shows.
function(run_first)
  file(MAKE_DIRECTORY ${WORK}/first)
  execute_process(COMMAND ${ARGV} WORKING_DIRECTORY ${WORK}/first OUTPUT_VARIABLE output RESULT_VARIABLE result)
  file(READ ${WORK}/first/first.record record HEX)
  if(NOT result EQUAL 0 OR NOT output MATCHES "^Run [1-9][0-9]*\r?\n$" OR NOT record MATCHES
      "^5352494601000000[0-9a-f]*ffffffff0c000000f3ffffff70756d702073746172746564$")
    message(FATAL_ERROR "The first program: ${result}\n${output}${record}")
  endif()
endfunction()

if(TOOLCHAIN)
  set(ENV{WINEPATH} ${prefix}/bin)
  run(${EMULATOR} ${WORK}/build/client.exe)
  run_first(${EMULATOR} ${WORK}/build/first/first.exe)
else()
  run(${WORK}/build/client)
  set(ENV{QUARNUTIL_MACHINE_DIR} ${WORK}/first)
  run_first(${WORK}/build/first/first)
  # The same client by pkg-config.
  set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
  execute_process(COMMAND pkg-config --cflags --libs QuarnUtil OUTPUT_VARIABLE package_flags
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(package_flags UNIX_COMMAND "${package_flags}")
  separate_arguments(FLAGS UNIX_COMMAND "${FLAGS}")
  run(${COMPILER} -std=c++20 ${FLAGS} ${WORK}/client/main.cpp -o ${WORK}/pkg-config-client ${package_flags}
    -Wl,-rpath,${prefix}/${LIBDIR})
  run(${WORK}/pkg-config-client)
endif()
file(REMOVE_RECURSE ${WORK})
