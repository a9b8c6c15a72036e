# TinyXML, always as a static library: the library sets a switch that is global to TinyXML, so it
# needs a private copy.

set(TINYXML_SOURCE_DIR "" CACHE PATH
    "TinyXML source, built with its own string class; if empty, the system's TinyXML is used")

add_library(tinyxml INTERFACE)

if(ANDROID AND NOT TINYXML_SOURCE_DIR)
    message(FATAL_ERROR "Android has no TinyXML: set TINYXML_SOURCE_DIR to its source")
endif()

if(TINYXML_SOURCE_DIR)
    # Debian's patched header forces std::string. Use a copy without those lines.
    file(READ ${TINYXML_SOURCE_DIR}/tinyxml.h TINYXML_HEADER)
    string(REGEX REPLACE "#ifndef TIXML_USE_STL[ \t\r\n]+#define TIXML_USE_STL[ \t\r\n]+#endif" ""
           TINYXML_HEADER "${TINYXML_HEADER}")
    set(TINYXML_BUILD_DIR ${PROJECT_BINARY_DIR}/tinyxml)
    file(CONFIGURE OUTPUT ${TINYXML_BUILD_DIR}/tinyxml.h CONTENT "${TINYXML_HEADER}" @ONLY)
    foreach(source tinystr.h tinystr.cpp tinyxml.cpp tinyxmlerror.cpp tinyxmlparser.cpp)
        configure_file(${TINYXML_SOURCE_DIR}/${source} ${TINYXML_BUILD_DIR}/${source} COPYONLY)
    endforeach()

    add_library(tinyxml_static STATIC
        ${TINYXML_BUILD_DIR}/tinystr.cpp
        ${TINYXML_BUILD_DIR}/tinyxml.cpp
        ${TINYXML_BUILD_DIR}/tinyxmlerror.cpp
        ${TINYXML_BUILD_DIR}/tinyxmlparser.cpp)
    set_target_properties(tinyxml_static PROPERTIES
        POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(tinyxml_static PRIVATE -fno-rtti)
    if(ZUBLIPSYNCAPI_SANITIZERS)
        target_compile_options(tinyxml_static PRIVATE
            -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS} -fno-sanitize-recover=all -O1)
    endif()
    target_link_libraries(tinyxml INTERFACE tinyxml_static)
    target_include_directories(tinyxml SYSTEM INTERFACE ${TINYXML_BUILD_DIR})
else()
    find_library(TINYXML_LIBRARY libtinyxml.a REQUIRED)
    find_path(TINYXML_INCLUDE_DIR tinyxml.h REQUIRED)
    target_link_libraries(tinyxml INTERFACE ${TINYXML_LIBRARY})
    target_include_directories(tinyxml SYSTEM INTERFACE ${TINYXML_INCLUDE_DIR})
endif()
