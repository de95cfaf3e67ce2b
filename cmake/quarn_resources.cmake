# quarn_add_resources(target file.rc [included file...]): gives a program or library its resources, string
# tables and a version block, from one source for both systems. The source is UTF-8 and says so with
# `#pragma code_page(65001)`; it sees the target's definitions and include folders. To be called in the folder
# that makes the target.
#
# On Windows the resources are linked in. Elsewhere windres compiles them, and the result, a standard .res
# file, becomes a note in the module, where QuarnUtil finds it. Without windres a compiled file.res beside
# file.rc is taken.
function(quarn_add_resources target source)
  get_filename_component(source ${source} ABSOLUTE)
  set(included)
  foreach(file IN LISTS ARGN)
    get_filename_component(file ${file} ABSOLUTE)
    list(APPEND included ${file})
  endforeach()
  if(WIN32)
    target_sources(${target} PRIVATE ${source})
    set_property(SOURCE ${source} APPEND PROPERTY OBJECT_DEPENDS ${included})
    return()
  endif()

  find_program(QUARN_WINDRES NAMES x86_64-w64-mingw32-windres windres DOC "Compiles resources")
  cmake_path(GET source STEM LAST_ONLY name)
  cmake_path(GET source PARENT_PATH folder)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/${target}-resources)
  if(QUARN_WINDRES)
    set(compiled ${work}/${name}.res)
    set(definitions $<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>)
    set(folders ${folder} $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
    file(MAKE_DIRECTORY ${work})
    # The C++ compiler as the preprocessor: windres by itself would ask for a cross-compiler.
    add_custom_command(OUTPUT ${compiled}
      COMMAND ${QUARN_WINDRES} --output-format=res --preprocessor=${CMAKE_CXX_COMPILER}
        --preprocessor-arg=-E --preprocessor-arg=-xc --preprocessor-arg=-std=c11
        --preprocessor-arg=-DRC_INVOKED
        "$<$<BOOL:${definitions}>:-D$<JOIN:${definitions},;-D>>" "-I$<JOIN:${folders},;-I>"
        ${source} ${compiled}
      DEPENDS ${source} ${included}
      COMMENT "Compiling resources ${name}.rc" COMMAND_EXPAND_LISTS VERBATIM)
  else()
    set(compiled ${folder}/${name}.res)
    if(NOT EXISTS ${compiled})
      message(FATAL_ERROR "${source} cannot be compiled: there is no windres. "
        "Install the package binutils-mingw-w64-x86-64 or set QUARN_WINDRES.")
    endif()
  endif()

  set(note ${work}/${name}.cpp)
  file(CONFIGURE OUTPUT ${note} @ONLY CONTENT [[
// A note of type 1 named "QuarnUtil" that holds the compiled resources.
asm(R"(
    .pushsection .note.quarnutil, "a", %note
    .balign 4
    .long 10, 2f - 1f, 1
    .asciz "QuarnUtil"
    .balign 4
1:  .incbin "@compiled@"
2:  .balign 4
    .popsection
)");
]])
  set_source_files_properties(${note} PROPERTIES OBJECT_DEPENDS ${compiled})
  target_sources(${target} PRIVATE ${note})
endfunction()

# quarn_add_resource_module(name file.rc [included file...]): a module of nothing but resources, no code and no
# runtime library, such as a language module: QuarnUtilDEU.dll or libQuarnUtilDEU.so of the name QuarnUtilDEU.
function(quarn_add_resource_module name source)
  add_library(${name} MODULE)
  quarn_add_resources(${name} ${source} ${ARGN})
  target_link_options(${name} PRIVATE -nostdlib)
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  if(WIN32)
    target_link_options(${name} PRIVATE -Wl,--entry=0)
    set_target_properties(${name} PROPERTIES PREFIX "")
  endif()
endfunction()
