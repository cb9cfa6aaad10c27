option(FABLEGRID_FUZZ "Build the fuzz targets as well; needs clang" OFF)
if(FABLEGRID_FUZZ AND NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "The fuzz targets need clang: cmake --preset asan")
endif()

# Linked PUBLIC into the library, so that everything that links it is built alike.
add_library(fablegrid_sanitizers INTERFACE)
if(FABLEGRID_SANITIZE)
    set(sanitizers address,undefined)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # Numbers from a file end in whole pixels; a conversion that does not fit is no part of `undefined`.
        string(APPEND sanitizers ,float-cast-overflow)
    endif()
    if(FABLEGRID_FUZZ)
        string(APPEND sanitizers ,fuzzer-no-link)
    endif()
    target_compile_options(fablegrid_sanitizers INTERFACE
        -fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(fablegrid_sanitizers INTERFACE -fsanitize=address,undefined)
endif()
