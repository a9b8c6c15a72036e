# Compile and link options of every target in this project. Users of the library do not get them.

add_library(zublipsyncapi_options INTERFACE)
target_compile_features(zublipsyncapi_options INTERFACE cxx_std_17)
target_compile_options(zublipsyncapi_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# A buffer overrun ends the process before it does other harm, and relocated data becomes read-only.
# Sanitizers have their own, stricter checks. _FORTIFY_SOURCE needs optimisation.
if(NOT ZUBLIPSYNCAPI_SANITIZERS)
    target_compile_options(zublipsyncapi_options INTERFACE -fstack-protector-strong
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
        $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
target_link_options(zublipsyncapi_options INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
if(ANDROID)
    # Devices with 16 KB pages load no library or program with a smaller alignment.
    target_link_options(zublipsyncapi_options INTERFACE LINKER:-z,max-page-size=16384)
endif()

if(ZUBLIPSYNCAPI_SANITIZERS)
    target_compile_options(zublipsyncapi_options INTERFACE
        -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zublipsyncapi_options INTERFACE -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS})
endif()
