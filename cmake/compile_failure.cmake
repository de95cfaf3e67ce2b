# cmake -DCOMPILER= -DSOURCE= -DMACRO= -DEXPECTED= -DFLAGS= -P compile_failure.cmake
# The source must compile as it is, and must fail with MACRO defined, with EXPECTED in the compiler's output:
# so the failure is the marked line's, for the expected reason.
separate_arguments(FLAGS UNIX_COMMAND "${FLAGS}")
# Plain quotes in messages, whatever the locale.
set(ENV{LC_ALL} C)
set(command ${COMPILER} ${FLAGS} -fsyntax-only -Werror ${SOURCE})

execute_process(COMMAND ${command} RESULT_VARIABLE result ERROR_VARIABLE errors OUTPUT_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "Without ${MACRO} this must compile:\n${errors}")
endif()

execute_process(COMMAND ${command} -D${MACRO} RESULT_VARIABLE result ERROR_VARIABLE errors OUTPUT_VARIABLE errors)
if(result EQUAL 0)
  message(FATAL_ERROR "With ${MACRO} this must not compile, but it does.")
endif()
if(NOT errors MATCHES "${EXPECTED}")
  message(FATAL_ERROR "With ${MACRO} the compiler was expected to say '${EXPECTED}', but it said:\n${errors}")
endif()
