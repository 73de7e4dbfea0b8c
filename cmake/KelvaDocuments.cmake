# The documents that are installed, in the folders that their links name, and the target `uninstall`. Links to what only
# the sources have lead nowhere there.
set(kelva_documents "${CMAKE_INSTALL_DATADIR}/doc/kelva")
install(FILES LICENSE THIRD-PARTY-NOTICES.md README.md CHANGELOG.md SECURITY.md DESTINATION "${kelva_documents}" COMPONENT Documentation)
install(DIRECTORY packaging/licences DESTINATION "${kelva_documents}/packaging" COMPONENT Documentation)
set(kelva_guides docs/embedding.md docs/protocol.md docs/macos.md docs/packaging.md docs/performance.md)
if(TARGET kelva)
  list(APPEND kelva_guides docs/json.md docs/trace.md docs/your-camera.md)
endif()
if(TARGET vcam_usbip)
  list(APPEND kelva_guides docs/usbip.md)
endif()
install(FILES ${kelva_guides} DESTINATION "${kelva_documents}/docs" COMPONENT Documentation)
install(DIRECTORY examples DESTINATION "${kelva_documents}" USE_SOURCE_PERMISSIONS COMPONENT Documentation)

if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} "-DBUILD=${PROJECT_BINARY_DIR}" -P "${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake"
    VERBATIM)
endif()
