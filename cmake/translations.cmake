# cmake --build build/release --target translation_template: every text for the screen, to be translated.
# Needs lupdate, which nothing else does (Debian package: qt6-l10n-tools).
find_program(LUPDATE_PROGRAM NAMES lupdate6 lupdate HINTS /usr/lib/qt6/bin ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS})
set(translation_template ${PROJECT_BINARY_DIR}/fablegrid.ts)
if(LUPDATE_PROGRAM)
    add_custom_target(translation_template
        COMMAND ${LUPDATE_PROGRAM} -silent -no-obsolete -locations relative -recursive ${PROJECT_SOURCE_DIR}/src
            -ts ${translation_template}
        COMMAND ${CMAKE_COMMAND} -E echo "Written: ${translation_template}"
        VERBATIM)
endif()
