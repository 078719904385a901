# SPDX-License-Identifier: MIT
# The packages: for Debian zvisp and zvisp-simulator, for macOS an archive of each.
set(CPACK_PACKAGE_VENDOR "The zvisp developers")
set(CPACK_PACKAGE_CONTACT "The zvisp developers <zvisp@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
# Each package has a description of its own; a common summary would be put above it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_COMPONENTS_ALL tool)
if(ZVISP_BUILD_SIMULATOR)
  list(APPEND CPACK_COMPONENTS_ALL simulator)
endif()

if(CMAKE_CROSSCOMPILING AND APPLE)
  set(CPACK_GENERATOR TGZ)
  set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENTS_GROUPING IGNORE)
  set(CPACK_ARCHIVE_TOOL_FILE_NAME zvisp-${PROJECT_VERSION}-macos-universal)
  set(CPACK_ARCHIVE_SIMULATOR_FILE_NAME zvisp-simulator-${PROJECT_VERSION}-macos-universal)
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The package that still had the plug-ins in it was 1.0.9 without a revision.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish.cmake)

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME zvisp)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "program the flash of display-scaler chips
Programs firmware into the flash of display-scaler chips and does the
maintenance around it, one action for each run. The work on the display is
done by a plug-in library, which comes with the display and is not part of
this package.")
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS zvisp-simulator)
set(CPACK_DEBIAN_TOOL_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/debian/preinst
  ${PROJECT_SOURCE_DIR}/packaging/debian/postinst
  ${PROJECT_SOURCE_DIR}/packaging/debian/postrm)

set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME zvisp-simulator)
set(CPACK_DEBIAN_SIMULATOR_DESCRIPTION "simulated displays for scripts and training with zvisp
Runs zvisp with a display that is kept in files and with a reference signer
for firmware files, so that production scripts can be tried and people
trained without hardware. It never reaches a real display.")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS zvisp)
include(CPack)
