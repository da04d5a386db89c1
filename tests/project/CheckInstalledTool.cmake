# Installs the component "tool" of the build in BUILD and nothing else to PREFIX, and starts the command there.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --component tool --prefix ${PREFIX}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PREFIX}/${BIN}/velhls --version OUTPUT_VARIABLE version RESULT_VARIABLE status ERROR_VARIABLE errors)
if(NOT status EQUAL 0 OR NOT version MATCHES "^velhls [0-9]")
    message(FATAL_ERROR "the installed command does not start: ${status} ${version}${errors}")
endif()
