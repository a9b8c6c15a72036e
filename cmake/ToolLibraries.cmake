# What the tools are built with.

# Adds a header-only library. Debian installs its headers beside those of this machine's C library,
# which an Android build must not see, so the include path gets links to these headers only.
function(add_header_library name variable header)
    find_path(${variable} ${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    set(links ${PROJECT_BINARY_DIR}/headers/${name})
    file(MAKE_DIRECTORY ${links})
    foreach(item IN LISTS ARGN)
        file(CREATE_LINK ${${variable}}/${item} ${links}/${item} SYMBOLIC)
    endforeach()
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${links})
endfunction()

add_header_library(cli11 CLI11_INCLUDE_DIR CLI/CLI.hpp CLI)
add_header_library(nlohmann_json NLOHMANN_JSON_INCLUDE_DIR nlohmann/json.hpp nlohmann)

if(ZUBLIPSYNCAPI_AZUBSIM)
    add_header_library(asio_headers ASIO_INCLUDE_DIR asio.hpp asio.hpp asio)
    set(PUGIXML_SOURCE_DIR "" CACHE PATH "pugixml source; if empty, the system's pugixml is used")
    if(PUGIXML_SOURCE_DIR)
        add_library(pugixml STATIC ${PUGIXML_SOURCE_DIR}/src/pugixml.cpp)
        target_include_directories(pugixml SYSTEM PUBLIC ${PUGIXML_SOURCE_DIR}/src)
        add_library(pugixml::pugixml ALIAS pugixml)
    elseif(ANDROID)
        message(FATAL_ERROR "Android has no pugixml: set PUGIXML_SOURCE_DIR to its source")
    else()
        find_package(pugixml REQUIRED)
    endif()
endif()

if(ZUBLIPSYNCAPI_LIPSYNCCTL)
    # Without ncurses there is no live view.
    set(CURSES_NEED_WIDE TRUE)
    find_package(Curses)
endif()
