# The Debian package of the command-line tool, built by CPack (cpack -G DEB): the arbolet program
# and its manual page. Only for native builds; Windows gets the installer (installer/).
include_guard(GLOBAL)
include(GNUInstallDirs)

# Debian keeps manual pages compressed.
set(ARBOLET_MANUAL ${CMAKE_BINARY_DIR}/man/arbolet.1)
find_program(ARBOLET_GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${ARBOLET_MANUAL}.gz
    COMMAND ${CMAKE_COMMAND} -E copy ${PROJECT_SOURCE_DIR}/docs/arbolet.1 ${ARBOLET_MANUAL}
    COMMAND ${ARBOLET_GZIP} -9nf ${ARBOLET_MANUAL}
    DEPENDS ${PROJECT_SOURCE_DIR}/docs/arbolet.1
    VERBATIM)
add_custom_target(arbolet_manual ALL DEPENDS ${ARBOLET_MANUAL}.gz)

install(TARGETS arbolet RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${ARBOLET_MANUAL}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME arbolet)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Arbolet")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "logic-flow trees and block checks for Visual Basic 6 projects")
set(CPACK_PACKAGE_DESCRIPTION
    "arbolet prints Visual Basic 6 projects as trees (projects, folders, components, and each\n"
    "component's code as a logic-flow tree), reports misplaced or missing block statements for\n"
    "CI, and edits custom folders and component names in the project files.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Arbolet developers")
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
