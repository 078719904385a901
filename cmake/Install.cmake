# SPDX-License-Identifier: MIT
# What lands where, and the packages. The plug-ins are found by the executable's real directory, so
# executable and plug-ins share one folder, and a link to it stands in bin/.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(home ${CMAKE_INSTALL_LIBEXECDIR}/zvisp)
set(staging ${CMAKE_BINARY_DIR}/packaging)
set(universal ${PROJECT_SOURCE_DIR}/build/macos-universal)

if(CMAKE_CROSSCOMPILING AND APPLE)
  # scripts/build-macos.sh joins the slices there before it packs.
  install(PROGRAMS ${universal}/zvisp DESTINATION ${home})
  install(PROGRAMS ${universal}/PlugIn/libIsp.dylib DESTINATION ${home}/PlugIn)
else()
  install(TARGETS zvisp RUNTIME DESTINATION ${home})
  if(TARGET isp_simulator)
    install(TARGETS isp_simulator LIBRARY DESTINATION ${home}/PlugIn)
  endif()
  if(TARGET sign_reference)
    install(TARGETS sign_reference LIBRARY DESTINATION ${home})
  endif()
endif()

file(RELATIVE_PATH target /${CMAKE_INSTALL_BINDIR} /${home}/zvisp)
file(MAKE_DIRECTORY ${staging})
file(CREATE_LINK ${target} ${staging}/zvisp SYMBOLIC)
install(FILES ${staging}/zvisp DESTINATION ${CMAKE_INSTALL_BINDIR})

# Debian's zsh looks for what packages bring in a folder of its own.
set(zsh_functions site-functions)
if(EXISTS /etc/debian_version AND NOT APPLE)
  set(zsh_functions vendor-completions)
endif()
install(FILES docs/zvisp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp RENAME copyright)
install(FILES completions/zvisp.bash RENAME zvisp
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completions/_zvisp DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_functions})
install(FILES completions/zvisp.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# For authors of plug-ins: the headers, and a package that find_package(zvisp) finds.
add_library(zvisp_plugin_api INTERFACE)
add_library(zvisp::plugin ALIAS zvisp_plugin_api)
set_target_properties(zvisp_plugin_api PROPERTIES EXPORT_NAME plugin)
# The headers are C11, and C++11 for those who write a plug-in in C++.
target_compile_features(zvisp_plugin_api INTERFACE c_std_11 cxx_std_11)
target_include_directories(zvisp_plugin_api INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zvisp>)
install(FILES
    src/plugin/zvisp_plugin.h src/plugin/command_setting.h src/plugin/digital_sign_args.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zvisp/plugin)
install(TARGETS zvisp_plugin_api EXPORT zvispTargets)
install(EXPORT zvispTargets NAMESPACE zvisp:: FILE zvispConfig.cmake
  DESTINATION ${CMAKE_INSTALL_DATADIR}/cmake/zvisp)
write_basic_package_version_file(${staging}/zvispConfigVersion.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES ${staging}/zvispConfigVersion.cmake DESTINATION ${CMAKE_INSTALL_DATADIR}/cmake/zvisp)

set(CPACK_PACKAGE_VENDOR "The zvisp developers")
set(CPACK_PACKAGE_CONTACT "The zvisp developers <zvisp@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
if(CMAKE_CROSSCOMPILING AND APPLE)
  set(CPACK_GENERATOR TGZ)
  set(CPACK_PACKAGE_FILE_NAME zvisp-${PROJECT_VERSION}-macos-universal)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_STRIP_FILES ON)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)
