# Runs PROGRAM with the arguments behind "--", and fails unless it succeeds and prints exactly what the file EXPECTED holds:
#
#     cmake -DPROGRAM=... -DEXPECTED=... -P CompareOutput.cmake -- ARGUMENT...
set(arguments "")
set(are_arguments OFF)
foreach(index RANGE ${CMAKE_ARGC})
    if(are_arguments AND index LESS CMAKE_ARGC)
        list(APPEND arguments "${CMAKE_ARGV${index}}")
    elseif("${CMAKE_ARGV${index}}" STREQUAL "--")
        set(are_arguments ON)
    endif()
endforeach()
execute_process(COMMAND ${PROGRAM} ${arguments}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ended with ${result}: ${errors}")
endif()
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} printed\n${output}\nand was expected to print\n${expected}")
endif()
