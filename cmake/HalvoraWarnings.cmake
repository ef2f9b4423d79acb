# Warning and sanitizer flags shared by every target of the project.
add_library(halvora_options INTERFACE)
target_compile_options(halvora_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow
    -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast -Wimplicit-fallthrough)
# GCC 12 reports -Wrestrict inside libstdc++'s own string concatenation at -O3
# (GCC bug 105329); nothing in this code base can act on it.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(halvora_options INTERFACE -Wno-restrict)
endif()
if(HALVORA_WARNINGS_AS_ERRORS)
    target_compile_options(halvora_options INTERFACE -Werror)
endif()
if(HALVORA_SANITIZE)
    target_compile_options(halvora_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(halvora_options INTERFACE -fsanitize=address,undefined)
endif()
