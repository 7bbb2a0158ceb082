# /usr/share/doc/PACKAGE/{copyright,changelog.Debian.gz}: every Debian package carries
# both. The change log's date is the release's, not the build's, so that two builds of
# one version give the same files.
set(VELINO_PACKAGE_RELEASE 1)
set(VELINO_PACKAGE_DATE "Mon, 23 Nov 2026 21:30:00 +0000")
set(VELINO_PACKAGE_MAINTAINER "Korvel Velino maintainers <velino@korvel.example>" CACHE STRING
  "Maintainer field of the Debian packages")

set(package_document_outputs)
function(velino_package_documents package component)
  set(PACKAGE_NAME ${package})
  set(changelog ${CMAKE_CURRENT_BINARY_DIR}/doc/${package}/changelog.Debian)
  configure_file(${CMAKE_CURRENT_SOURCE_DIR}/debian/changelog.in ${changelog} @ONLY)
  velino_gzip(${changelog} ${changelog}.gz)
  install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/debian/copyright ${changelog}.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
  set(package_document_outputs ${package_document_outputs} ${changelog}.gz PARENT_SCOPE)
endfunction()

velino_package_documents(velino velino)
if(TARGET velino-sync-server)
  velino_package_documents(velino-sync-server server)
endif()
add_custom_target(velino-package-documents ALL DEPENDS ${package_document_outputs})
