# The platform's log writer: the NDK's on Android, Debian's build of the same library on Linux,
# which stands in a directory of its own.

if(ANDROID)
    # The header is among the NDK's own, which must not be searched a second time.
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
