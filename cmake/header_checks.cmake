# Every public header compiles alone, twice in one unit, and after <windows.h>, with all warnings; and none but
# the seam's header brings the system's in.
get_target_property(public_headers QuarnUtil HEADER_SET)
set(sources)
foreach(header IN LISTS public_headers)
  file(RELATIVE_PATH header ${PROJECT_SOURCE_DIR} ${header})
  string(MAKE_C_IDENTIFIER ${header} name)

  set(text "#include \"${header}\"\n#include \"${header}\"\n")
  if(NOT header STREQUAL "quarn/platform/win32_api.h")
    string(APPEND text "#if defined(_WINDOWS_)\n#error this header brings the system in\n#endif\n")
  endif()
  file(CONFIGURE OUTPUT header_checks/${name}.cpp CONTENT "${text}" @ONLY)
  list(APPEND sources ${CMAKE_CURRENT_BINARY_DIR}/header_checks/${name}.cpp)

  if(WIN32)
    file(CONFIGURE OUTPUT header_checks/windows_${name}.cpp
      CONTENT "#include <windows.h>\n#include \"${header}\"\n" @ONLY)
    list(APPEND sources ${CMAKE_CURRENT_BINARY_DIR}/header_checks/windows_${name}.cpp)
  endif()
endforeach()
add_library(header_checks OBJECT ${sources})
target_link_libraries(header_checks PRIVATE QuarnUtil::QuarnUtil quarn_warnings)
