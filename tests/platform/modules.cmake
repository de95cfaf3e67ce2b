quarn_add_resource_module(quarn_full_module platform/resources/full.rc)
quarn_add_resource_module(quarn_no_translation_module platform/resources/no_translation.rc)
quarn_add_resource_module(quarn_no_block_module platform/resources/no_block.rc)

add_library(quarn_test_modules INTERFACE)
target_compile_definitions(quarn_test_modules INTERFACE
  QUARN_FULL_MODULE="$<TARGET_FILE:quarn_full_module>"
  QUARN_NO_TRANSLATION_MODULE="$<TARGET_FILE:quarn_no_translation_module>"
  QUARN_NO_BLOCK_MODULE="$<TARGET_FILE:quarn_no_block_module>"
  QUARN_GERMAN_MODULE="$<TARGET_FILE:QuarnUtilDEU>"
  QUARN_LIBRARY="$<TARGET_FILE:QuarnUtil>"
  QUARN_PROJECT_VERSION="${PROJECT_VERSION}"
  QUARN_TEST_SOURCE="${PROJECT_SOURCE_DIR}/CMakeLists.txt")
add_dependencies(quarn_test_modules
  quarn_full_module quarn_no_translation_module quarn_no_block_module QuarnUtil QuarnUtilDEU)

# Companion modules: companion_1 to companion_4, which know their numbers, and companion_fails, which cannot be
# loaded.
set(companions ${CMAKE_CURRENT_BINARY_DIR}/companions)
add_library(quarn_companions INTERFACE)
target_compile_definitions(quarn_companions INTERFACE QUARN_COMPANIONS="${companions}")
foreach(name IN ITEMS 1 2 3 4 fails)
  set(module quarn_companion_${name})
  add_library(${module} MODULE platform/companion.cpp)
  if(WIN32)
    target_sources(${module} PRIVATE platform/companion.def)
  endif()
  if(name STREQUAL fails)
    target_compile_definitions(${module} PRIVATE COMPANION_FAILS COMPANION_NUMBER=0)
  else()
    target_compile_definitions(${module} PRIVATE COMPANION_NUMBER=${name})
  endif()
  set_target_properties(${module} PROPERTIES
    PREFIX "" OUTPUT_NAME companion_${name} NO_SONAME ON LIBRARY_OUTPUT_DIRECTORY ${companions})
  target_link_libraries(${module} PRIVATE quarn_warnings)
  add_dependencies(quarn_companions ${module})
endforeach()
