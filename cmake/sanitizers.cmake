# Linked PUBLIC into the library, so that everything that links it is built alike.
add_library(fablegrid_sanitizers INTERFACE)
if(FABLEGRID_SANITIZE)
    target_compile_options(fablegrid_sanitizers INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(fablegrid_sanitizers INTERFACE -fsanitize=address,undefined)
endif()
