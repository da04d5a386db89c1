# Runs PROGRAM with ARGUMENT and fails unless it succeeds and prints exactly what the file EXPECTED holds.
execute_process(COMMAND ${PROGRAM} ${ARGUMENT} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ended with ${result}: ${errors}")
endif()
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} printed\n${output}\nand was expected to print\n${expected}")
endif()
