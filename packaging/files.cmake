# Installs the man page, completions and documentation, and on Linux the licences of the system's
# libraries that are linked statically.
include(GNUInstallDirs)

install(FILES man/brimletctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES completions/brimletctl.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME brimletctl)
install(FILES completions/brimletctl.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES completions/_brimletctl DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)

file(GLOB PAGES ${PROJECT_SOURCE_DIR}/docs/*.md)
install(FILES ${PAGES} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY ../docs/pictures DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY ../recipes DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS)
install(FILES ../README.md ../CHANGELOG.md ../LICENSE.md ../SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(NOT APPLE)
    foreach(LIBRARY c6 ncurses pugixml)  # c6 is the C library, in a static program.
        install(FILES /usr/share/doc/lib${LIBRARY}-dev/copyright OPTIONAL
                DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences RENAME ${LIBRARY}.txt)
    endforeach()
endif()
