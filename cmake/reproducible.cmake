# Two builds of one state are the same, bit by bit, wherever they are made: packaging/check-reproducible.sh looks.
add_library(fablegrid_reproducible INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    # Debuggers and coverage want the true paths, so only what users run goes without them.
    target_compile_options(fablegrid_reproducible INTERFACE
        $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
endif()

# The resource compiler writes down when each file was last changed, which a checkout does not keep, or else the
# time of the whole build, which is another one after the next commit. A time of 0 would count as none given.
function(fablegrid_resources target collection)
    cmake_path(GET collection STEM name)
    set(made ${CMAKE_CURRENT_BINARY_DIR}/qrc_${name}.cpp)
    set(source ${CMAKE_CURRENT_SOURCE_DIR}/${collection})
    add_custom_command(OUTPUT ${made}
        COMMAND ${CMAKE_COMMAND} -E env --unset=SOURCE_DATE_EPOCH QT_RCC_SOURCE_DATE_OVERRIDE=1
            $<TARGET_FILE:Qt6::rcc> --name ${name} --output ${made} ${source}
        DEPENDS ${source} ${ARGN}
        VERBATIM)
    set_source_files_properties(${made} PROPERTIES SKIP_AUTOGEN ON)
    target_sources(${target} PRIVATE ${made})
endfunction()
