option(FABLEGRID_COVERAGE "Count which lines and branches the tests reach; needs gcc" OFF)

# Linked PUBLIC into the library; tests/coverage.sh reads what it counts.
add_library(fablegrid_coverage INTERFACE)
if(FABLEGRID_COVERAGE)
    target_compile_options(fablegrid_coverage INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(fablegrid_coverage INTERFACE --coverage)
endif()
