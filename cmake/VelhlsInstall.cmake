# What cmake --install puts where. Of the models: runtime (the shared library) and development (headers, link library, CMake
# and pkg-config files); of velhls::check the same as check_runtime and check_development; and tool (the command, in
# tool/CMakeLists.txt).
include(CMakePackageConfigHelpers)

set(velhls_cmake_folder "${CMAKE_INSTALL_LIBDIR}/cmake/velhls")

get_target_property(velhls_type velhls TYPE)
set(velhls_kind static)
if(velhls_type STREQUAL "SHARED_LIBRARY")
    set(velhls_kind shared)
endif()

# velhls_install_library(TARGET NAME COMPONENT_PREFIX HEADER...): the static and the shared library may be installed into
# one prefix: each has a targets file of its own, NAME-static-targets.cmake or NAME-shared-targets.cmake.
function(velhls_install_library target name prefix)
    install(TARGETS ${target} EXPORT ${name}-targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${prefix}runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${prefix}runtime NAMELINK_COMPONENT ${prefix}development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${prefix}development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(EXPORT ${name}-targets
        FILE ${name}-${velhls_kind}-targets.cmake
        NAMESPACE velhls::
        DESTINATION ${velhls_cmake_folder}
        COMPONENT ${prefix}development)
    foreach(header IN LISTS ARGN)
        get_filename_component(folder ${header} DIRECTORY)
        install(FILES ${velhls_SOURCE_DIR}/${header}
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT ${prefix}development)
    endforeach()
    configure_file(${velhls_SOURCE_DIR}/cmake/${name}.pc.in ${velhls_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${velhls_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${prefix}development)
endfunction()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/velhlsConfig.cmake.in
    ${velhls_BINARY_DIR}/velhlsConfig.cmake INSTALL_DESTINATION ${velhls_cmake_folder})
write_basic_package_version_file(${velhls_BINARY_DIR}/velhlsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${velhls_BINARY_DIR}/velhlsConfig.cmake ${velhls_BINARY_DIR}/velhlsConfigVersion.cmake
    DESTINATION ${velhls_cmake_folder} COMPONENT development)

# pkg-config: folders below the prefix are written relative to the file, so that the prefix may be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(velhls_pc_prefix "${CMAKE_INSTALL_PREFIX}")
    set(velhls_pc_libdir "${CMAKE_INSTALL_LIBDIR}")
else()
    file(RELATIVE_PATH velhls_pc_up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" velhls_pc_up "${velhls_pc_up}")
    set(velhls_pc_prefix "\${pcfiledir}/${velhls_pc_up}")
    set(velhls_pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(velhls_pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
else()
    set(velhls_pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
set(velhls_pc_definitions "")
if(velhls_kind STREQUAL "shared")
    set(velhls_pc_definitions " -DVELHLS_SHARED")
endif()
# A linker driven by another language than C++ has to be told of the C++ runtime behind a static library.
set(velhls_runtime_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER velhls_runtime_libraries INCLUDE REGEX "^(stdc\\+\\+|c\\+\\+|c\\+\\+abi|m)$")
list(REMOVE_DUPLICATES velhls_runtime_libraries)
list(TRANSFORM velhls_runtime_libraries PREPEND " -l")
string(CONCAT velhls_pc_private_libraries ${velhls_runtime_libraries})

velhls_install_library(velhls velhls "" ${velhls_public_headers})
if(VELHLS_BUILD_CHECK)
    # An installed libvelhls-check finds the libvelhls beside it, wherever the prefix is moved.
    set_target_properties(velhls_check PROPERTIES INSTALL_RPATH "$ORIGIN")
    velhls_install_library(velhls_check velhls-check check_ ${velhls_public_headers_of_check})
endif()
