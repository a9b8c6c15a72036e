# The platform's log library: on Android the NDK's, on Linux Debian's build of it, which is in a
# subdirectory.

if(ANDROID)
    # The NDK's default include directory has the header, and must not be added a second time.
    find_library(ANDROID_LOG_LIBRARY log REQUIRED)
    set(ANDROID_LOG_INCLUDE_DIR "")
else()
    find_library(ANDROID_LOG_LIBRARY log PATH_SUFFIXES android REQUIRED)
    find_path(ANDROID_LOG_INCLUDE_DIR android/log.h PATH_SUFFIXES android REQUIRED)
endif()

get_filename_component(ANDROID_LOG_DIR ${ANDROID_LOG_LIBRARY} DIRECTORY)

add_library(android_log SHARED IMPORTED)
set_target_properties(android_log PROPERTIES
    IMPORTED_LOCATION ${ANDROID_LOG_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES "${ANDROID_LOG_INCLUDE_DIR}")
