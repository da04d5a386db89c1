# The Debian packages that cpack makes of a shared build: libvelhls1 (the models' library), libvelhls-dev (development),
# libvelhls-check1 and libvelhls-check-dev (the same of velhls::check), velhls (the command), and of what bindings are built
# libvelhls-c1 and libvelhls-c-dev (for C) and python3-velhls. The preset "package" sets what they need; packaging/debian
# makes and checks them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velhls)
set(CPACK_PACKAGE_VENDOR velhls)
set(CPACK_PACKAGE_CONTACT "${VELHLS_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_RESOURCE_FILE_LICENSE ${velhls_SOURCE_DIR}/LICENSE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${velhls_BINARY_DIR}/velhls ${velhls_BINARY_DIR}/bindings/c)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(velhls_debian_folder ${velhls_BINARY_DIR}/debian)
string(TIMESTAMP velhls_package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
string(TIMESTAMP velhls_package_year "%Y" UTC)
file(WRITE ${velhls_debian_folder}/changelog.Debian
"velhls (${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Version ${PROJECT_VERSION}; changelog.gz says what changed.

 -- ${VELHLS_PACKAGE_CONTACT}  ${velhls_package_date}
")
file(WRITE ${velhls_debian_folder}/copyright
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: velhls

Files: *
Copyright: ${velhls_package_year} The velhls developers
License: Apache-2.0
 On Debian systems the text of the Apache License, version 2.0, stands in
 /usr/share/common-licenses/Apache-2.0.
")
find_program(VELHLS_GZIP gzip REQUIRED)
execute_process(COMMAND ${VELHLS_GZIP} -9 --no-name --stdout ${velhls_debian_folder}/changelog.Debian
    OUTPUT_FILE ${velhls_debian_folder}/changelog.Debian.gz COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${VELHLS_GZIP} -9 --no-name --stdout ${velhls_SOURCE_DIR}/CHANGELOG.md
    OUTPUT_FILE ${velhls_debian_folder}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)

# velhls_debian_package(COMPONENT PACKAGE SECTION WHAT_IT_HOLDS)
macro(velhls_debian_package component package section content)
    string(TOUPPER ${component} component_upper)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${component_upper}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${component_upper}_PACKAGE_SECTION ${section})
    set(CPACK_COMPONENT_${component_upper}_DESCRIPTION
"velhls reads HTTP Live Streaming playlists (RFC 8216) into an object model,
checks and cleans them, and writes them back.

This package holds ${content}.")
    install(FILES ${velhls_debian_folder}/changelog.Debian.gz ${velhls_debian_folder}/changelog.gz
            ${velhls_debian_folder}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endmacro()

velhls_debian_package(runtime libvelhls${PROJECT_VERSION_MAJOR} libs "the shared library of the models")
velhls_debian_package(development libvelhls-dev libdevel
    "the headers of the models, and CMake and pkg-config files")
velhls_debian_package(check_runtime libvelhls-check${PROJECT_VERSION_MAJOR} libs
    "the shared library that checks playlists")
velhls_debian_package(check_development libvelhls-check-dev libdevel
    "the headers for checks, and CMake and pkg-config files")
velhls_debian_package(tool velhls video "the velhls command, its manual page and its completions")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_CHECK_RUNTIME_DEPENDS runtime)
set(CPACK_COMPONENT_CHECK_DEVELOPMENT_DEPENDS check_runtime development)
set(CPACK_COMPONENT_TOOL_DEPENDS runtime check_runtime)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_CHECK_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
if(VELHLS_BUILD_C)
    velhls_debian_package(c_runtime libvelhls-c${PROJECT_VERSION_MAJOR} libs "the shared library for C")
    velhls_debian_package(c_development libvelhls-c-dev libdevel "the header for C, and a pkg-config file")
    set(CPACK_COMPONENT_C_RUNTIME_DEPENDS check_runtime)
    set(CPACK_COMPONENT_C_DEVELOPMENT_DEPENDS c_runtime)
    set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
    set(CPACK_DEBIAN_C_RUNTIME_PACKAGE_CONTROL_EXTRA ${velhls_debian_folder}/triggers)
endif()
if(VELHLS_BUILD_PYTHON)
    velhls_debian_package(python python3-velhls python "the Python package velhls")
    set(CPACK_COMPONENT_PYTHON_DEPENDS check_runtime)
    # The extension is one of this minor version of Python, and works with no other.
    execute_process(COMMAND ${PYTHON_EXECUTABLE} -c
            "import sys; print('python3 (>= 3.%d), python3 (<< 3.%d)' % (sys.version_info[1], sys.version_info[1] + 1))"
        OUTPUT_VARIABLE CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    # As Debian's own packages do, so that no compiled file is left after the package was removed.
    file(WRITE ${velhls_debian_folder}/postinst "#!/bin/sh\nset -e\npy3compile -p python3-velhls\n")
    file(WRITE ${velhls_debian_folder}/prerm "#!/bin/sh\nset -e\npy3clean -p python3-velhls\n")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${velhls_debian_folder}/postinst ${velhls_debian_folder}/prerm)
endif()

# One trigger tells the linker's cache of the libraries after all packages were unpacked.
file(WRITE ${velhls_debian_folder}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${velhls_debian_folder}/triggers)
set(CPACK_DEBIAN_CHECK_RUNTIME_PACKAGE_CONTROL_EXTRA ${velhls_debian_folder}/triggers)

include(CPack)
