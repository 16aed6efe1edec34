# What is installed on Linux, and the Debian package of it. The parts keep the tree's own layout below lib/tidewell, so
# that they find each other there as they do here.
set(APPLICATION_ID app.tidewell.Tidewell)
set(LINUX ${CMAKE_CURRENT_LIST_DIR})

install(TARGETS Tidewell RUNTIME DESTINATION lib/tidewell)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/LinuxEngine/orb ${PROJECT_SOURCE_DIR}/LinuxEngine/with-engine
        DESTINATION lib/tidewell/LinuxEngine)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/LinuxEngine/engine DESTINATION lib/tidewell/LinuxEngine
        FILES_MATCHING PATTERN *.py PATTERN __pycache__ EXCLUDE)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/Tools/with-own-tools DESTINATION lib/tidewell/Tools)
install(PROGRAMS ${LINUX}/tidewell DESTINATION bin)

install(FILES ${LINUX}/${APPLICATION_ID}.desktop DESTINATION share/applications)
install(FILES ${LINUX}/${APPLICATION_ID}.metainfo.xml DESTINATION share/metainfo)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION share/doc/tidewell RENAME copyright)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION share/doc/tidewell)
install(FILES ${PROJECT_SOURCE_DIR}/LinuxEngine/README.md DESTINATION share/doc/tidewell RENAME LinuxEngine.md)
set(ICONS ${PROJECT_SOURCE_DIR}/Packaging/icon)
set(HICOLOR share/icons/hicolor)
install(FILES ${ICONS}/tidewell.svg DESTINATION ${HICOLOR}/scalable/apps RENAME ${APPLICATION_ID}.svg)
foreach(size 16 24 32 48 64 128 256 512)
  install(FILES ${ICONS}/tidewell-${size}.png DESTINATION ${HICOLOR}/${size}x${size}/apps RENAME ${APPLICATION_ID}.png)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_NAME tidewell)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The engine's: Python's standard library, mounts, and what makes namespaces. Some font must be there to read.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3 (>= 3.9), mount, util-linux (>= 2.34)")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "docker.io")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${LINUX}/postinst ${LINUX}/prerm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
