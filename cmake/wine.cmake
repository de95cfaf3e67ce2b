# Windows programs of a cross-build run under Wine, in a prefix inside the build tree. Included before any
# target is made: a target takes the emulator when it is created.
set(QUARN_WINE_PREFIX ${PROJECT_BINARY_DIR}/wine)
set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_SOURCE_DIR}/scripts/wine-run ${QUARN_WINE_PREFIX})

# Tests that require the fixture "wine" leave no server behind.
add_test(NAME wine_server_ends COMMAND ${PROJECT_SOURCE_DIR}/scripts/wine-run ${QUARN_WINE_PREFIX} --stop)
set_tests_properties(wine_server_ends PROPERTIES FIXTURES_CLEANUP wine)
