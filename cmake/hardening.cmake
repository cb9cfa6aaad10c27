# What a release build does against its own mistakes. tests/hardening/check-hardening.sh looks at the built file.
add_library(fablegrid_hardening INTERFACE)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT WIN32
   AND NOT FABLEGRID_SANITIZE AND NOT FABLEGRID_FUZZ)
    set(is_release $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
    # A distribution's compiler may define _FORTIFY_SOURCE by itself; twice would be a warning.
    target_compile_options(fablegrid_hardening INTERFACE
        $<${is_release}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-D_GLIBCXX_ASSERTIONS;-fstack-protector-strong>)
    if(NOT APPLE)
        target_link_options(fablegrid_hardening INTERFACE $<${is_release}:LINKER:-z,relro;LINKER:-z,now>)
    endif()
endif()
