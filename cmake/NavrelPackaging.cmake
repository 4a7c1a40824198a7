# What an installation consists of, and the Debian package that holds it.
include(GNUInstallDirs)

set(linux "${PROJECT_SOURCE_DIR}/packaging/linux")
set(firewall "${PROJECT_SOURCE_DIR}/packaging/firewall")
set(debian "${PROJECT_SOURCE_DIR}/packaging/debian")
set(doc "${CMAKE_INSTALL_DATAROOTDIR}/doc/navrel")

install(TARGETS navrel navrel-companion RUNTIME)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/icons/hicolor"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons")
install(FILES "${linux}/nl.kelvane.Navrel.desktop"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${linux}/nl.kelvane.Navrel.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES
        "${PROJECT_SOURCE_DIR}/docs/manual.md"
        "${PROJECT_SOURCE_DIR}/docs/api.md"
        "${PROJECT_SOURCE_DIR}/docs/protocol.md"
        "${debian}/copyright"
    DESTINATION "${doc}")
if(TARGET navrel_vscode)
    # navrel-companion finds it beside its own folder.
    install(FILES "${PROJECT_BINARY_DIR}/navrel.vsix"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/navrel")
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/editors/vim"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/navrel")
# The manual's pictures.
foreach(picture IN ITEMS browser-phone browser-tablet-light companion open-panel-light panel-light window-light)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/images/${picture}.png" DESTINATION "${doc}/images")
endforeach()

install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/navrel-companion.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME navrel-companion)
install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/_navrel-companion"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")

configure_file("${linux}/navrel.service.in" "${PROJECT_BINARY_DIR}/packaging/navrel.service" @ONLY)
# Not under the library folder: systemd reads user units from here, whatever the architecture.
install(FILES "${PROJECT_BINARY_DIR}/packaging/navrel.service" DESTINATION lib/systemd/user)

# For the firewalls that an administrator may run; installing them opens nothing.
install(FILES "${firewall}/navrel.xml" DESTINATION lib/firewalld/services)
install(FILES "${firewall}/navrel.profile" DESTINATION "${CMAKE_INSTALL_FULL_SYSCONFDIR}/ufw/applications.d" RENAME navrel)

# navrel_install_compressed(SOURCE NAME DESTINATION)
# Installs a text as NAME.gz, as manuals and changelogs are kept; the same bytes on every build.
function(navrel_install_compressed source name destination)
    set(compressed "${PROJECT_BINARY_DIR}/packaging/${name}.gz")
    add_custom_command(OUTPUT "${compressed}"
        COMMAND gzip -9nc "${source}" > "${compressed}"
        DEPENDS "${source}"
        VERBATIM)
    install(FILES "${compressed}" DESTINATION "${destination}")
    set_property(GLOBAL APPEND PROPERTY NAVREL_COMPRESSED "${compressed}")
endfunction()

foreach(page IN ITEMS navrel navrel-companion)
    navrel_install_compressed("${PROJECT_SOURCE_DIR}/packaging/man/${page}.1" "${page}.1"
        "${CMAKE_INSTALL_MANDIR}/man1")
endforeach()
navrel_install_compressed("${PROJECT_SOURCE_DIR}/CHANGELOG.md" changelog "${doc}")
navrel_install_compressed("${debian}/changelog" changelog.Debian "${doc}")
get_property(compressed GLOBAL PROPERTY NAVREL_COMPRESSED)
add_custom_target(navrel_compressed ALL DEPENDS ${compressed})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME navrel)
set(CPACK_PACKAGE_CONTACT "Navrel developers <navrel@navrel.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show an Xcode project on a phone or tablet")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Navrel mirrors an Xcode project (groups, files, superclasses, shortcut
comments, classes, methods, properties, marks, warnings) and serves it to a
companion app on a device, which it reaches over USB. A tap there opens the
file in Neovim, Emacs or another editor, at the line.
.
The package holds navrel, which lives in the tray of the desktop, and
navrel-companion, which stands in for the companion app at a terminal.")
set(CPACK_STRIP_FILES ON)
# What an administrator may change, and where it is: not below the prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${debian}/conffiles")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# xdg-open opens files, the manual and downloads.
set(CPACK_DEBIAN_PACKAGE_DEPENDS xdg-utils)
# A device is reached through usbmuxd, but the terminal companion needs none; the tray's icon and menu go over
# the session bus, but a desktop of old has its tray in X.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "default-dbus-session-bus | dbus-session-bus, usbmuxd")
# The editors that are followed; and windows on Wayland without the X server in between.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "neovim | emacs, qt6-wayland")
include(CPack)
