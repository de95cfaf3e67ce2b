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
