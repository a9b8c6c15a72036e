# The library: an object library, which tests of inner layers link, and the shared library.

add_library(zublipsyncapi_objects OBJECT
    cmdfrmwrk/src/Client.cpp
    cmdfrmwrk/src/Command.cpp
    cmdfrmwrk/src/Peer.cpp
    comms/src/Client.cpp
    comms/src/Link.cpp
    comms/src/TextProtocol.cpp
    lipsyncapi/src/Service.cpp
    log/src/LogWriter.cpp
    log/src/ThroughputLimit.cpp
    utilities/log/src/Assertion.cpp
    utilities/xmlserializer/src/DocumentLimits.cpp
    utilities/xmlserializer/src/Envelope.cpp
    utilities/xmlserializer/src/PlainCursor.cpp
    utilities/xmlserializer/src/ResultTrait.cpp
    utilities/xmlserializer/src/XmlTraitSerializer.cpp)
set_target_properties(zublipsyncapi_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
target_compile_options(zublipsyncapi_objects PRIVATE -fno-rtti)
if(ZUBLIPSYNCAPI_SANITIZERS)
    # Sanitizers slow the library down, and fuzzers call it millions of times.
    target_compile_options(zublipsyncapi_objects PRIVATE -O1)
endif()
target_include_directories(zublipsyncapi_objects PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(zublipsyncapi_objects
    PUBLIC tinyxml android_log
    PRIVATE zublipsyncapi_options)

set(exports ${PROJECT_SOURCE_DIR}/cmake/zublipsyncapi.map)
add_library(zublipsyncapi SHARED)
add_library(zublipsyncapi::zublipsyncapi ALIAS zublipsyncapi)
set_target_properties(zublipsyncapi PROPERTIES LINK_DEPENDS ${exports})
if(ANDROID)
    # Devices with 16 KB pages refuse to load a library with a smaller alignment.
    target_link_options(zublipsyncapi PRIVATE LINKER:-z,max-page-size=16384)
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
target_compile_features(zublipsyncapi PUBLIC cxx_std_17)
target_include_directories(zublipsyncapi INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zublipsyncapi>)
target_link_libraries(zublipsyncapi PRIVATE zublipsyncapi_objects zublipsyncapi_options)
target_link_options(zublipsyncapi PRIVATE
    LINKER:--version-script=${exports}
    LINKER:--exclude-libs,ALL
    LINKER:--as-needed)
if(NOT ZUBLIPSYNCAPI_SANITIZERS)
    # With clang, the executable provides the sanitizers' functions.
    target_link_options(zublipsyncapi PRIVATE LINKER:--no-undefined)
endif()
