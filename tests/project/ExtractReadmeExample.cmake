# Writes the README's C++ example to EXAMPLE_SOURCE and the output that it shows to EXAMPLE_OUTPUT.
file(READ ${README} readme)
string(REGEX MATCH "```cpp\n(.*)```\n\nprints\n\n```text\n([^`]*)```" found "${readme}")
if(NOT found)
    message(FATAL_ERROR "README.md has no C++ example followed by what it prints")
endif()
file(WRITE ${EXAMPLE_SOURCE} "${CMAKE_MATCH_1}")
file(WRITE ${EXAMPLE_OUTPUT} "${CMAKE_MATCH_2}")
