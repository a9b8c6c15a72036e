# Installs three components: the library (runtime), its headers and package files (development), and
# the tools. The headers keep their paths under one include directory.

include(CMakePackageConfigHelpers)

install(TARGETS zublipsyncapi zublipsyncapi_avsync EXPORT zublipsyncapi
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT runtime NAMELINK_COMPONENT development)

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS interface/public-headers.txt)
file(STRINGS interface/public-headers.txt public_headers)
foreach(header IN LISTS public_headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zublipsyncapi/${folder}
        COMPONENT development)
endforeach()

# Every package has the licence file. It also names the licence of TinyXML, which is linked in.
set(packages libzublipsyncapi${PROJECT_VERSION_MAJOR} libzublipsyncapi-dev zublipsync-tools)
set(components runtime development tools)
foreach(package component IN ZIP_LISTS packages components)
    install(FILES cmake/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
        COMPONENT ${component})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zublipsyncapi)
install(EXPORT zublipsyncapi NAMESPACE zublipsyncapi:: DESTINATION ${package_dir}
    FILE zublipsyncapi-targets.cmake COMPONENT development)
write_basic_package_version_file(zublipsyncapi-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    cmake/zublipsyncapi-config.cmake
    ${PROJECT_BINARY_DIR}/zublipsyncapi-config-version.cmake
    DESTINATION ${package_dir} COMPONENT development)

install(DIRECTORY examples/video_pipeline
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libzublipsyncapi-dev/examples COMPONENT development)

# GNUInstallDirs allows absolute directories, which must not get the prefix. If the library directory
# is relative, the .pc file finds the prefix from its own location, so any prefix works.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
    file(RELATIVE_PATH pc_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    set(pc_prefix "\${pcfiledir}/${pc_prefix}")
endif()
foreach(dir LIBDIR INCLUDEDIR)
    if(IS_ABSOLUTE ${CMAKE_INSTALL_${dir}})
        set(pc_${dir} ${CMAKE_INSTALL_${dir}})
    else()
        set(pc_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
    endif()
endforeach()
configure_file(cmake/zublipsyncapi.pc.in zublipsyncapi.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zublipsyncapi.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
