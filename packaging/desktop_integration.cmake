# The launcher entry, the AppStream description and the icon in the hicolor sizes. The
# PNGs are kept in resources/ (velino.png is the 256 px icon, VelinoLogo.png the 512 px
# one), so building never needs an SVG renderer; `cmake --build build --target
# velino-icons` redraws the small sizes from velino-logo.svg when rsvg-convert is there.
set(VELINO_ICON_SIZES 16 24 32 48 64 128)

if(TARGET velino)
  install(FILES ${VELINO_RESOURCES_DIR}/velino.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT velino)
  install(FILES ${VELINO_RESOURCES_DIR}/example.korvel.Velino.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT velino)

  set(icon_root ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  foreach(size IN LISTS VELINO_ICON_SIZES)
    install(FILES ${VELINO_RESOURCES_DIR}/icons/velino-${size}.png
      DESTINATION ${icon_root}/${size}x${size}/apps RENAME velino.png COMPONENT velino)
  endforeach()
  install(FILES ${VELINO_RESOURCES_DIR}/velino.png
    DESTINATION ${icon_root}/256x256/apps COMPONENT velino)
  install(FILES ${VELINO_RESOURCES_DIR}/VelinoLogo.png
    DESTINATION ${icon_root}/512x512/apps RENAME velino.png COMPONENT velino)
  install(FILES ${VELINO_RESOURCES_DIR}/velino-logo.svg
    DESTINATION ${icon_root}/scalable/apps RENAME velino.svg COMPONENT velino)
endif()

find_program(RSVG_CONVERT rsvg-convert)
if(RSVG_CONVERT)
  set(render_commands)
  foreach(size IN LISTS VELINO_ICON_SIZES)
    list(APPEND render_commands
      COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} velino-logo.svg -o icons/velino-${size}.png)
  endforeach()
  add_custom_target(velino-icons ${render_commands}
    WORKING_DIRECTORY ${VELINO_RESOURCES_DIR}
    COMMENT "Rendering the Velino icon sizes"
    VERBATIM)
endif()
