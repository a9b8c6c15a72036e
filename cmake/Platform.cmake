# How the shared library is laid out for its platform.

if(ANDROID)
    # Ship the library without symbols, and keep a copy with symbols to analyse crashes.
    add_custom_command(TARGET zublipsyncapi POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory unstripped
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:zublipsyncapi> unstripped/
        COMMAND ${CMAKE_STRIP} --strip-unneeded $<TARGET_FILE:zublipsyncapi>)
else()
    # An Android app bundles its libraries and finds them by names without versions. A Linux system
    # can have several versions at the same time.
    set_target_properties(zublipsyncapi PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH ${ANDROID_LOG_DIR})
endif()
