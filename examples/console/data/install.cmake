# SPDX-License-Identifier: MIT
# What a desktop and a shell want of a program: menu entry, icon, description, completion, man page.
install(FILES data/veltra-console.bash RENAME veltra-console
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
if(TARGET veltra-console-window)
    install(FILES data/org.veltra.console.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
    install(FILES data/org.veltra.console.metainfo.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
    install(FILES data/org.veltra.console.svg
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
endif()

# The man page is the program's own help, which must run for it.
find_program(CONSOLE_HELP2MAN help2man)
mark_as_advanced(CONSOLE_HELP2MAN)
if(NOT CONSOLE_HELP2MAN OR CMAKE_CROSSCOMPILING OR VELTRA_SANITIZE)
    message(STATUS "veltra-console has no man page: help2man not found, or the program cannot be run")
    return()
endif()
set(man_page "${CMAKE_CURRENT_BINARY_DIR}/veltra-console.1")
add_custom_command(OUTPUT "${man_page}"
    COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C.UTF-8 "${CONSOLE_HELP2MAN}" --no-info --section=1
        --version-string=${PROJECT_VERSION} "--name=play audio files and measure what they hold"
        "--manual=User Commands" "--source=Veltra ${PROJECT_VERSION}"
        "--output=${man_page}" $<TARGET_FILE:veltra-console>
    DEPENDS veltra-console VERBATIM)
add_custom_target(veltra-console-man ALL DEPENDS "${man_page}")
install(FILES "${man_page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
if(TARGET veltra-console-window)
    file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/veltra-console-window.1" ".so man1/veltra-console.1\n")
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/veltra-console-window.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endif()
