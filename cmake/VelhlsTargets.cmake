# What this project's own targets have in common.

# The warnings under which they are built. They are private: a user's build never sees them. As a part of another
# project velhls is built without any, so that no flag of that project, and no newer compiler, breaks its build.
function(velhls_set_warnings target)
    if(NOT velhls_IS_TOP_LEVEL)
        target_compile_options(${target} PRIVATE $<IF:$<BOOL:${MSVC}>,/w,-w>)
        return()
    endif()
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /utf-8)
        if(VELHLS_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE /WX)
        endif()
        return()
    endif()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
    if(VELHLS_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# Turns the option of something off that cannot be built without velhls::check, and says so.
macro(velhls_needs_check what option)
    if(${option} AND NOT VELHLS_BUILD_CHECK)
        message(NOTICE "velhls: ${what} is not built without velhls::check (VELHLS_BUILD_CHECK)")
        set(${option} OFF)
    endif()
endmacro()

# Adds a folder when its option is on and the packages that it needs are there. Without one of them the library can
# still be built, so that is said and not an error.
macro(velhls_add_optional_subdirectory folder option packages)
    foreach(package ${packages})
        if(${option})
            find_package(${package} QUIET)
            if(NOT ${package}_FOUND)
                message(NOTICE "velhls: ${folder}/ is not built, since ${package} was not found (see CONTRIBUTING.md)")
                set(${option} OFF)
            endif()
        endif()
    endforeach()
    if(${option})
        add_subdirectory(${folder})
    endif()
endmacro()
