# Manual pages, completions, and the Debian package: `cmake --build build/release --target package`.
install(FILES docs/man/fleetwise.1 docs/man/fleetwise-hook.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completions/fleetwise.bash RENAME fleetwise
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES packaging/completions/fleetwise.zsh RENAME _fleetwise
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES packaging/completions/fleetwise.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# fleetwise_check(NAME PROGRAM [arguments…]): a test that runs a checking program; it is skipped
# where the program is not installed.
function(fleetwise_check name program)
    add_test(NAME packaging.${name}
             COMMAND sh -c "command -v \"$0\" >/dev/null || exit 77; exec \"$0\" \"$@\"" ${program}
                     ${ARGN})
    set_tests_properties(packaging.${name} PROPERTIES SKIP_RETURN_CODE 77)
endfunction()

if(BUILD_TESTING)
    fleetwise_check(desktop-file desktop-file-validate ${CMAKE_SOURCE_DIR}/resources/fleetwise.desktop)
    fleetwise_check(metainfo appstreamcli validate --no-net
                    ${CMAKE_BINARY_DIR}/resources/fleetwise.metainfo.xml)
    foreach(shell bash zsh fish)
        fleetwise_check(${shell}-completion ${shell} -n
                        ${CMAKE_SOURCE_DIR}/packaging/completions/fleetwise.${shell})
    endforeach()
endif()

set(CPACK_PACKAGE_NAME fleetwise)
set(CPACK_PACKAGE_VENDOR Fleetwise)
set(CPACK_PACKAGE_CONTACT "Fleetwise developers <developers@fleetwise.localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "monitor of AI coding-agent sessions")
set(CPACK_PACKAGE_DESCRIPTION
    "Fleetwise shows the sessions of Claude Code and Codex on this machine as one
list: what each does, what it costs, and which of them waits for the user. A
mark in the tray counts those at work; a click brings a session's window to
the front, or resumes one that has ended.

It reads the files that the agents keep anyway, and those of a small hook
program that it installs for Claude Code where the user wants that. Nothing
leaves the machine but what the user has posted to an address of their own.")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
    set(CPACK_GENERATOR DEB)
else()
    set(CPACK_GENERATOR TGZ)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "hicolor-icon-theme, tzdata")
# Wayland, the toolkit's own texts, opening editors, and the usual sounds with a player for them.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "pulseaudio-utils | pipewire-bin, qt6-translations-l10n, qt6-wayland, sound-theme-freedesktop, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "tmux")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/debian/stage.cmake)
set(CPACK_FLEETWISE_PACKAGING ${CMAKE_SOURCE_DIR}/packaging/debian)
set(CPACK_FLEETWISE_CHANGES ${CMAKE_SOURCE_DIR}/CHANGELOG.md)
include(CPack)
