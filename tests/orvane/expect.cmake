# Runs one orvane command line and checks its exit status and its output (standard output and
# standard error together). Run by ctest with COMMAND (a ;-list), EXIT_CODE and OUTPUT (a
# regular expression).
execute_process(COMMAND ${COMMAND} RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT code STREQUAL "${EXIT_CODE}")
    message(FATAL_ERROR "exit status ${code}, expected ${EXIT_CODE}; output:\n${out}")
endif()
if(NOT out MATCHES "${OUTPUT}")
    message(FATAL_ERROR "output does not match '${OUTPUT}':\n${out}")
endif()
