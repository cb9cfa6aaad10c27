# The warnings of this project's own code. Linked PRIVATE, so that nobody who links a target inherits them.
add_library(fablegrid_warnings INTERFACE)
target_compile_options(fablegrid_warnings INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wshadow>
    $<$<AND:$<BOOL:${FABLEGRID_WARNINGS_AS_ERRORS}>,$<CXX_COMPILER_ID:GNU,Clang,AppleClang>>:-Werror>
    $<$<CXX_COMPILER_ID:MSVC>:/W4>
)
