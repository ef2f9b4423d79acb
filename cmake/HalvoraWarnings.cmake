# Warning and sanitizer flags shared by every target of the project.
add_library(halvora_options INTERFACE)
target_compile_options(halvora_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow
    -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast -Wimplicit-fallthrough)
if(HALVORA_WARNINGS_AS_ERRORS)
    target_compile_options(halvora_options INTERFACE -Werror)
endif()
if(HALVORA_SANITIZE)
    target_compile_options(halvora_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(halvora_options INTERFACE -fsanitize=address,undefined)
endif()
