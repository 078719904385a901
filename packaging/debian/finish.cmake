# SPDX-License-Identifier: MIT
# Runs when the files of the Debian packages are in place and before they are packed: adds the
# changelog and the overrides of lintian, and compresses what Debian wants compressed.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${share}/doc/${package}/changelog.Debian
    @ONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${package}.lintian-overrides
    ${share}/lintian/overrides/${package} COPYONLY)
  file(GLOB compressed ${share}/man/man1/*.1 ${share}/doc/${package}/changelog.Debian)
  execute_process(COMMAND gzip -9n ${compressed} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
