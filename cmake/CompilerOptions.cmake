# What every target of this project is compiled with, and nothing of it is passed on to users.

add_library(zublipsyncapi_options INTERFACE)
target_compile_features(zublipsyncapi_options INTERFACE cxx_std_17)
target_compile_options(zublipsyncapi_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# Overruns of buffers end the process before they can do anything else, and what the loader has
# filled in becomes read-only. Sanitizers look closer themselves; checked copies need optimisation.
if(NOT ZUBLIPSYNCAPI_SANITIZERS)
    target_compile_options(zublipsyncapi_options INTERFACE -fstack-protector-strong
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
        $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
target_link_options(zublipsyncapi_options INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)

if(ZUBLIPSYNCAPI_SANITIZERS)
    target_compile_options(zublipsyncapi_options INTERFACE
        -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zublipsyncapi_options INTERFACE -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS})
endif()
