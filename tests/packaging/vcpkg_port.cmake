# Runs the portfile of an overlay port without vcpkg: a few stand-ins take the calls that it makes.
#
#     cmake -DPORT_FOLDER=... -DWORK=... -P vcpkg_port.cmake
#
# It fails unless the port configures, builds and installs, and velhls is found where vcpkg would put it.
file(READ ${PORT_FOLDER}/vcpkg.json manifest)
foreach(key name version-semver description license dependencies)
    string(JSON value GET "${manifest}" ${key})
endforeach()
string(JSON version GET "${manifest}" version-semver)
if(NOT version MATCHES "^[0-9]+\\.[0-9]+\\.[0-9]+$")
    message(FATAL_ERROR "vcpkg.json has the version \"${version}\"")
endif()

set(PORT velhls)
set(CURRENT_PACKAGES_DIR ${WORK}/package)

function(vcpkg_cmake_configure)
    cmake_parse_arguments(PARSE_ARGV 0 given "" "SOURCE_PATH" "OPTIONS")
    execute_process(COMMAND ${CMAKE_COMMAND} -G Ninja -S ${given_SOURCE_PATH} -B ${WORK}/build ${given_OPTIONS}
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR} -DCMAKE_INSTALL_LIBDIR=lib
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()
function(vcpkg_cmake_install)
    execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build --target install
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()
function(vcpkg_cmake_config_fixup)
    cmake_parse_arguments(PARSE_ARGV 0 given "" "PACKAGE_NAME;CONFIG_PATH" "")
    if(NOT EXISTS ${CURRENT_PACKAGES_DIR}/${given_CONFIG_PATH}/velhlsConfig.cmake)
        message(FATAL_ERROR "no velhlsConfig.cmake in ${given_CONFIG_PATH}")
    endif()
endfunction()
function(vcpkg_fixup_pkgconfig)
    if(NOT EXISTS ${CURRENT_PACKAGES_DIR}/lib/pkgconfig/velhls.pc)
        message(FATAL_ERROR "no velhls.pc")
    endif()
endfunction()
function(vcpkg_install_copyright)
    cmake_parse_arguments(PARSE_ARGV 0 given "" "" "FILE_LIST")
    file(INSTALL ${given_FILE_LIST} DESTINATION ${CURRENT_PACKAGES_DIR}/share/${PORT})
endfunction()

include(${PORT_FOLDER}/portfile.cmake)
foreach(installed include/velhls/VELHLS.h share/velhls/usage share/velhls/LICENSE)
    if(NOT EXISTS ${CURRENT_PACKAGES_DIR}/${installed})
        message(FATAL_ERROR "${installed} was not installed")
    endif()
endforeach()
