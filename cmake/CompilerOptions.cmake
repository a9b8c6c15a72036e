# What every target of this project is compiled with, and nothing of it is passed on to users.

add_library(zublipsyncapi_options INTERFACE)
target_compile_features(zublipsyncapi_options INTERFACE cxx_std_17)
target_compile_options(zublipsyncapi_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

if(ZUBLIPSYNCAPI_SANITIZERS)
    target_compile_options(zublipsyncapi_options INTERFACE
        -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zublipsyncapi_options INTERFACE -fsanitize=${ZUBLIPSYNCAPI_SANITIZERS})
endif()
