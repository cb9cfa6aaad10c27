option(FABLEGRID_FUZZ "Build the fuzz targets, and only them of the tests; needs clang" OFF)

# Linked PUBLIC into the library, so that everything that links it is built alike.
add_library(fablegrid_sanitizers INTERFACE)
if(FABLEGRID_SANITIZE)
    target_compile_options(fablegrid_sanitizers INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(fablegrid_sanitizers INTERFACE -fsanitize=address,undefined)
endif()
if(FABLEGRID_FUZZ)
    # Numbers from a file end in whole pixels; a conversion that does not fit is no part of `undefined`.
    target_compile_options(fablegrid_sanitizers INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(fablegrid_sanitizers INTERFACE -fsanitize=address,undefined)
endif()
