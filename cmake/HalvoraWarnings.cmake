# Warning and sanitizer flags shared by every target of the project.
add_library(halvora_options INTERFACE)
target_compile_options(halvora_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow
    -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast -Wimplicit-fallthrough)
# GCC 12 reports -Wrestrict inside libstdc++'s own string concatenation at -O3
# (GCC bug 105329) and -Wmaybe-uninitialized for moved std::optional values
# (GCC bugs 105593, 107138); nothing in this code base can act on either.
# -Wuninitialized stays on, and clang builds keep both checks.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(halvora_options INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(HALVORA_WARNINGS_AS_ERRORS)
    target_compile_options(halvora_options INTERFACE -Werror)
endif()
if(HALVORA_SANITIZE)
    target_compile_options(halvora_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(halvora_options INTERFACE -fsanitize=address,undefined)
endif()
