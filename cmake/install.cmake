# Where the program's files go on a system with a desktop, and the Debian package that is made of them.
include(GNUInstallDirs)

install(TARGETS fablegrid fablegrid-story
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    BUNDLE DESTINATION .)

if(NOT UNIX OR APPLE)
    return()
endif()

# Everything that is installed, and nothing besides.
add_custom_target(fablegrid_packed)
add_dependencies(fablegrid_packed fablegrid fablegrid-story)

# All libraries are the system's own.
set_target_properties(fablegrid fablegrid-story PROPERTIES INSTALL_RPATH "")

set(desktop_id example.fablegrid.fablegrid)
set(linux_files ${PROJECT_SOURCE_DIR}/packaging/linux)
set(made_files ${PROJECT_BINARY_DIR}/packaging)

configure_file(${linux_files}/${desktop_id}.metainfo.xml.in ${made_files}/${desktop_id}.metainfo.xml @ONLY)
configure_file(${linux_files}/fablegrid.1.in ${made_files}/fablegrid.1 @ONLY)
configure_file(${linux_files}/fablegrid-story.1.in ${made_files}/fablegrid-story.1 @ONLY)

install(FILES ${linux_files}/${desktop_id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${made_files}/${desktop_id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES ${linux_files}/icons/${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
        RENAME fablegrid.png)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/src/resources/Assets/Logo/logo - Square (Fill) - App 1.svg"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
    RENAME fablegrid.svg)
install(FILES ${linux_files}/completions/fablegrid-story.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME fablegrid-story)
install(FILES ${linux_files}/completions/_fablegrid-story
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES ${linux_files}/completions/fablegrid-story.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# Manual pages and changelogs are kept compressed; -n leaves out the time, so that two builds are alike.
find_program(GZIP_PROGRAM gzip)
if(GZIP_PROGRAM)
    function(fablegrid_install_compressed file destination)
        cmake_path(GET file FILENAME name)
        set(made ${made_files}/${name}.gz)
        add_custom_command(OUTPUT ${made}
            COMMAND ${GZIP_PROGRAM} -9nc ${file} > ${made}
            DEPENDS ${file}
            VERBATIM)
        add_custom_target(compressed_${name} ALL DEPENDS ${made})
        add_dependencies(fablegrid_packed compressed_${name})
        install(FILES ${made} DESTINATION ${destination})
    endfunction()
    fablegrid_install_compressed(${made_files}/fablegrid.1 ${CMAKE_INSTALL_MANDIR}/man1)
    fablegrid_install_compressed(${made_files}/fablegrid-story.1 ${CMAKE_INSTALL_MANDIR}/man1)
else()
    install(FILES ${made_files}/fablegrid.1 ${made_files}/fablegrid-story.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

find_program(DPKG_PROGRAM dpkg)
if(NOT DPKG_PROGRAM OR NOT GZIP_PROGRAM)
    return()
endif()

# What only a Debian package has.
configure_file(${linux_files}/changelog.Debian.in ${made_files}/changelog.Debian @ONLY)
fablegrid_install_compressed(${made_files}/changelog.Debian ${CMAKE_INSTALL_DOCDIR})
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${made_files}/changelog COPYONLY)
fablegrid_install_compressed(${made_files}/changelog ${CMAKE_INSTALL_DOCDIR})
install(FILES ${linux_files}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${linux_files}/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    RENAME fablegrid)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The Fablegrid developers")
set(CPACK_PACKAGE_CONTACT "The Fablegrid developers <developers@${FABLEGRID_DOCUMENTATION_HOST}>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://${FABLEGRID_DOCUMENTATION_HOST}/")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The window's icon is a drawing, which a plugin reads that nothing links.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6svg6)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, fonts-dejavu-core")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "plan a story as a graph of events")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "\
With Fablegrid a writer plans a story as a graph of events on a large canvas.
Each event is a box with a title and a description; joining the output of one
box to the input of another says what leads to what.

One event is the end of the story: the chain that leads to it is the story,
and a panel lists it, to be read, edited and filtered to what is important.

The command fablegrid-story takes stories out as documents, pictures and data,
and makes stories of outlines from elsewhere.")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
