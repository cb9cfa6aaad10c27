# The library that reads Markdown. Debian's package for CMake also asks for the program of that name, which is
# in a package that is not needed.
find_path(FABLEGRID_CMARK_INCLUDE cmark.h REQUIRED)
find_library(FABLEGRID_CMARK_LIBRARY cmark REQUIRED)
mark_as_advanced(FABLEGRID_CMARK_INCLUDE FABLEGRID_CMARK_LIBRARY)
add_library(fablegrid_cmark INTERFACE)
target_include_directories(fablegrid_cmark SYSTEM INTERFACE ${FABLEGRID_CMARK_INCLUDE})
target_link_libraries(fablegrid_cmark INTERFACE ${FABLEGRID_CMARK_LIBRARY})
