# The compiler's runtime libraries, stripped, beside the programs; installed beside the DLL. They are shared
# so that the library and its clients have one runtime: exceptions and error categories cross the boundary.
foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
    OUTPUT_VARIABLE origin OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT IS_ABSOLUTE "${origin}")
    message(FATAL_ERROR "The compiler does not know where its ${name} is.")
  endif()
  set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name})
  if("${origin}" IS_NEWER_THAN "${copy}")
    file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    execute_process(COMMAND ${CMAKE_STRIP} -o ${copy} ${origin} COMMAND_ERROR_IS_FATAL ANY)
  endif()
  install(FILES ${copy} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endforeach()
