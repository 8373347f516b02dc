# The Debian package; scripts/make-package builds it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brimlet)
set(CPACK_PACKAGE_VENDOR "Brimlet developers")
set(CPACK_PACKAGE_CONTACT "Brimlet developers <brimlet@localhost.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/finish.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
if(CMAKE_CROSSCOMPILING)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show how full the context window of a Codex task is")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION [[
brimletctl shows, for the tasks of the Codex agent, how full the model's
context window is and how often the conversation has been compacted: live in
a terminal, as a line for tmux, Waybar or a prompt, as JSON, or drawn over
time.

It reads local files only and sends nothing anywhere, and the kernel enforces
this.]])
include(CPack)
