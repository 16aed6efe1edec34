# The bundle, with Qt inside and signed, and the disk image of it. TIDEWELL_SIGNING_IDENTITY in the environment of the
# installing command names who signs; without it the signature is ad hoc, which only its own computer trusts.
set(MACOS ${CMAKE_CURRENT_LIST_DIR})
set(ICON ${PROJECT_SOURCE_DIR}/Packaging/icon/tidewell.icns)
target_sources(Tidewell PRIVATE ${ICON})
set_source_files_properties(${ICON} TARGET_DIRECTORY Tidewell PROPERTIES MACOSX_PACKAGE_LOCATION Resources)

install(TARGETS Tidewell BUNDLE DESTINATION .)
# Qt's tool looks into the libraries, which it can only do on a Mac.
if(NOT CMAKE_CROSSCOMPILING)
  qt_generate_deploy_app_script(TARGET Tidewell OUTPUT_SCRIPT DEPLOY_SCRIPT NO_TRANSLATIONS)
  install(SCRIPT ${DEPLOY_SCRIPT})
  install(CODE "execute_process(COMMAND \"${MACOS}/finish\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Tidewell.app\"
    COMMAND_ERROR_IS_FATAL ANY)")
endif()

set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_FILE_NAME Tidewell-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_DMG_VOLUME_NAME Tidewell)
