# velhls_test_documentation(FILE...): makes a test of every code block of the Markdown files. What a block is says the
# word after its fence:
#
#     cpp        a program, or lines for the middle of one; it is built, run, and must print what the text block that
#                follows it shows, or nothing when none follows. A program that does not include VELHLSCheck.h is linked
#                with the models alone
#     c          a program in C, as a cpp block; it is built where libvelhls-c is
#     python     a program in Python, as a cpp block; it is run by the package's own tests
#     js         a program in JavaScript, likewise
#     text       what the cpp, c, python or js block before it prints
#     console    commands after "$ ", each followed by what it prints, errors included
#     m3u8       a playlist; with a name after the word (m3u8 live.m3u8) the file's other blocks find it by that name
#     cmake      lines of one of the projects under tests/consumers, which build
#     yaml       a file of another program that names hooks of this repository
#     sh         commands that are not run here
#
# Any other word, and a fence without one, is an error. Blocks run in a folder of their own with the playlists of their
# file and a link to examples/.

set(velhls_fragment_head [=[
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

int main() {
]=])

function(velhls_test_program_block language name folder code expected)
    if(language MATCHES "^(python|js)$" OR (language STREQUAL "c" AND NOT TARGET velhls_c))
        return()
    endif()
    if(NOT code MATCHES "int main\\(")
        set(code "${velhls_fragment_head}${code}}\n")
    endif()
    file(CONFIGURE OUTPUT ${folder}/block.${language} CONTENT "@code@" @ONLY)
    file(CONFIGURE OUTPUT ${folder}/block.output CONTENT "@expected@" @ONLY)
    string(MAKE_C_IDENTIFIER "documentation_${name}" target)
    add_executable(${target} ${folder}/block.${language})
    if(language STREQUAL "c")
        target_link_libraries(${target} PRIVATE velhls_c)
    elseif(code MATCHES "velhls/VELHLSCheck.h")
        target_link_libraries(${target} PRIVATE velhls::check)
    else()
        target_link_libraries(${target} PRIVATE velhls::velhls)
    endif()
    velhls_set_warnings(${target})
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${folder} OUTPUT_NAME block)
    add_test(NAME ${name}
        COMMAND ${CMAKE_COMMAND} -DPROGRAM=${folder}/block -DEXPECTED=${folder}/block.output
            -P ${velhls_SOURCE_DIR}/cmake/CompareOutput.cmake
        WORKING_DIRECTORY ${folder})
endfunction()

function(velhls_test_console_block name folder code)
    find_program(VELHLS_BASH bash)
    if(NOT TARGET velhls_tool OR NOT VELHLS_BASH)
        return()
    endif()
    file(CONFIGURE OUTPUT ${folder}/block.console CONTENT "@code@" @ONLY)
    add_test(NAME ${name}
        COMMAND ${VELHLS_BASH} ${velhls_SOURCE_DIR}/tests/project/run-console-block ${folder}/block.console
            $<TARGET_FILE_DIR:velhls_tool>
        WORKING_DIRECTORY ${folder})
endfunction()

function(velhls_check_cmake_block place code)
    file(GLOB projects ${velhls_SOURCE_DIR}/tests/consumers/*/CMakeLists.txt)
    foreach(project IN LISTS projects)
        file(READ ${project} text)
        string(FIND "${text}" "${code}" found)
        if(NOT found EQUAL -1)
            return()
        endif()
    endforeach()
    message(FATAL_ERROR "${place}: no project under tests/consumers has these lines:\n${code}")
endfunction()

# The hooks that it names are those that there are.
function(velhls_check_yaml_block place code)
    file(READ ${velhls_SOURCE_DIR}/.pre-commit-hooks.yaml hooks)
    string(REGEX MATCHALL "id: [a-z-]+\n" ids "${code}")
    if(ids STREQUAL "")
        message(FATAL_ERROR "${place}: this block names no hook")
    endif()
    foreach(id IN LISTS ids)
        string(FIND "${hooks}" "- ${id}" found)
        if(found EQUAL -1)
            message(FATAL_ERROR "${place}: there is no hook ${id}")
        endif()
    endforeach()
endfunction()

function(velhls_test_documentation_of path)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${velhls_SOURCE_DIR}/${path})
    file(READ ${velhls_SOURCE_DIR}/${path} rest)
    set(document_folder ${CMAKE_CURRENT_BINARY_DIR}/documentation/${path})
    file(REMOVE_RECURSE ${document_folder}/playlists)
    file(MAKE_DIRECTORY ${document_folder}/playlists)
    set(line 1)
    set(folders "")
    set(pending_code "")

    string(FIND "${rest}" "\n```" start)
    while(NOT start EQUAL -1)
        # `rest` becomes the text after the opening fence; `line` is the line of that fence.
        string(SUBSTRING "${rest}" 0 ${start} passed)
        string(REGEX MATCHALL "\n" feeds "${passed}\n")
        list(LENGTH feeds count)
        math(EXPR line "${line} + ${count}")
        math(EXPR start "${start} + 4")
        string(SUBSTRING "${rest}" ${start} -1 rest)
        string(FIND "${rest}" "\n" end)
        string(SUBSTRING "${rest}" 0 ${end} words)
        string(SUBSTRING "${rest}" ${end} -1 rest)
        string(FIND "${rest}" "\n```\n" end)
        if(end EQUAL -1)
            message(FATAL_ERROR "${path}:${line}: this block has no end")
        endif()
        string(SUBSTRING "${rest}" 0 ${end} code)
        string(REGEX REPLACE "^\n" "" code "${code}")
        string(APPEND code "\n")

        set(name "${path}:${line}")
        set(folder ${document_folder}/${line})
        if(NOT pending_code STREQUAL "")
            if(words STREQUAL "text")
                velhls_test_program_block(${pending_language} ${pending_name} ${pending_folder} "${pending_code}" "${code}")
            else()
                velhls_test_program_block(${pending_language} ${pending_name} ${pending_folder} "${pending_code}" "")
            endif()
        endif()
        set(was_pending "${pending_code}")
        set(pending_code "")

        if(words MATCHES "^(cpp|c|python|js)$")
            set(pending_code "${code}")
            set(pending_language ${words})
            set(pending_name "${name}")
            set(pending_folder ${folder})
            list(APPEND folders ${folder})
        elseif(words STREQUAL "console")
            velhls_test_console_block(${name} ${folder} "${code}")
            list(APPEND folders ${folder})
        elseif(words MATCHES "^m3u8 ([a-z0-9.-]+)$")
            set(playlist ${CMAKE_MATCH_1})
            file(CONFIGURE OUTPUT ${document_folder}/playlists/${playlist} CONTENT "@code@" @ONLY)
        elseif(words STREQUAL "cmake")
            velhls_check_cmake_block(${name} "${code}")
        elseif(words STREQUAL "yaml")
            velhls_check_yaml_block(${name} "${code}")
        elseif(words STREQUAL "text" AND was_pending STREQUAL "")
            message(FATAL_ERROR "${name}: this text block stands after no program")
        elseif(NOT words MATCHES "^(text|m3u8|sh)$")
            message(FATAL_ERROR "${name}: a block of an unknown kind: \"${words}\"")
        endif()

        math(EXPR end "${end} + 4")
        string(REGEX MATCHALL "\n" feeds "${code}")
        list(LENGTH feeds count)
        math(EXPR line "${line} + ${count} + 1")
        string(SUBSTRING "${rest}" ${end} -1 rest)
        string(FIND "${rest}" "\n```" start)
    endwhile()
    if(NOT pending_code STREQUAL "")
        velhls_test_program_block(${pending_language} ${pending_name} ${pending_folder} "${pending_code}" "")
    endif()

    foreach(folder IN LISTS folders)
        file(COPY ${document_folder}/playlists/ DESTINATION ${folder})
        file(CREATE_LINK ${velhls_SOURCE_DIR}/examples ${folder}/examples SYMBOLIC)
    endforeach()
endfunction()

function(velhls_test_documentation)
    foreach(path IN LISTS ARGN)
        velhls_test_documentation_of(${path})
    endforeach()
endfunction()
