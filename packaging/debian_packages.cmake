# CPack: one Debian package per component, dist/velino_VERSION-RELEASE_ARCH.deb and
# dist/velino-sync-server_VERSION-RELEASE_ARCH.deb (scripts/package). The libraries come
# from the binaries (dpkg-shlibdeps); what the programs load at run time without linking
# to it (QML modules, the font, xdg-open) is listed by hand.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velino)
set(CPACK_PACKAGE_VENDOR Korvel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${VELINO_PACKAGE_MAINTAINER}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${VELINO_PACKAGE_RELEASE})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${VELINO_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SOURCE velino)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# The window and velino-render.
set(CPACK_DEBIAN_VELINO_PACKAGE_NAME velino)
set(CPACK_DEBIAN_VELINO_PACKAGE_SECTION mail)
set(VELINO_RUNTIME_PACKAGES
  qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-templates
  qml6-module-qtquick-layouts qml6-module-qtquick-window qml6-module-qtquick-shapes
  qml6-module-qtquick-dialogs qml6-module-qtcore qml6-module-qt-labs-folderlistmodel
  qml6-module-qtwebengine
  fonts-inter xdg-utils)
list(JOIN VELINO_RUNTIME_PACKAGES ", " CPACK_DEBIAN_VELINO_PACKAGE_DEPENDS)
set(CPACK_DEBIAN_VELINO_PACKAGE_SUGGESTS thunderbird)
set(CPACK_DEBIAN_VELINO_DESCRIPTION [=[e-mail studio of a device-repair workshop
Velino is a desktop studio in which the staff of a device-repair workshop
compose branded e-mails to their clients: a quote, a notice that a device is
ready, an appointment confirmation, a follow-up. From one record of 31 text
fields it derives, live, a responsive HTML e-mail, a plain-text version, the
subject, an eight-point checklist and a status, and hands the result to the
clipboard, a file, the browser or Thunderbird.

This package also holds velino-render, which renders a record given as JSON
on the command line. The window's texts are in French.]=])

# The phone sync service (velino-sync-server adds its program and systemd unit to the
# component `server`). systemd learns of the unit at installation; the service is not
# started, since it needs its TLS files or a proxy in front first.
set(CPACK_DEBIAN_SERVER_PACKAGE_NAME velino-sync-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/server/postinst
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/server/prerm
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/server/postrm)
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_DEBIAN_SERVER_DESCRIPTION [=[phone sync service of the Velino e-mail studio
velino-sync-server keeps, for each private sync code, the last draft sent by
Velino or by the phone web interface and hands it back on request, over
HTTPS (or plain HTTP behind a TLS proxy). Drafts are stored under the hash of
their code, in SQLite or PostgreSQL, and removed after a retention period.

The systemd unit runs the service under a dynamic user with a private state
folder.]=])

# Named explicitly: with one component alone (no service in the build) CPack would
# otherwise make a single package without the settings above.
get_cmake_property(installed_components COMPONENTS)
set(CPACK_COMPONENTS_ALL)
foreach(component IN LISTS installed_components)
  if(component STREQUAL "velino" OR component STREQUAL "server")
    list(APPEND CPACK_COMPONENTS_ALL ${component})
  else()
    message(WARNING "Install component \"${component}\" belongs to no Debian package")
  endif()
endforeach()

include(CPack)
