# Manual pages, written by hand in resources/man/, installed compressed.
set(manual_page_outputs)
function(velino_manual_page page section component)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/man/${page}.${section}.gz)
  velino_gzip(${VELINO_RESOURCES_DIR}/man/${page}.${section} ${output})
  install(FILES ${output} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
    COMPONENT ${component})
  set(manual_page_outputs ${manual_page_outputs} ${output} PARENT_SCOPE)
endfunction()

velino_manual_page(velino-render 1 velino)
if(TARGET velino)
  velino_manual_page(velino 1 velino)
endif()
if(TARGET velino-sync-server)
  velino_manual_page(velino-sync-server 8 server)
endif()
add_custom_target(velino-manual-pages ALL DEPENDS ${manual_page_outputs})
