# Writes the documentation's site to FOLDER/html: what DOXYGEN makes of FOLDER/Doxyfile, and beside it the programs and schemas
# of the source tree SOURCE that its pages link to.
execute_process(COMMAND ${DOXYGEN} ${FOLDER}/Doxyfile RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "doxygen is not content")
endif()
file(GLOB programs ${SOURCE}/examples/*.cpp)
file(COPY ${programs} DESTINATION ${FOLDER}/html/examples)
file(COPY ${SOURCE}/docs/schemas DESTINATION ${FOLDER}/html)
