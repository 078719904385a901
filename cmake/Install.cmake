# SPDX-License-Identifier: MIT
# What is installed where. Plug-ins are found by the executable's real directory, so each of the two
# components has a directory of its own with an executable, and its command in bin/:
#   tool        zvisp, without plug-ins: nothing of ours is called like a real plug-in there
#   simulator   zvisp-simulator: the same executable with the simulated display and the signer
# They are two components, and two packages, so that no installation of the tool can replace a
# plug-in of a customer. What others install goes with the tool.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tool)
set(home ${CMAKE_INSTALL_LIBEXECDIR}/zvisp)
set(simulator_home ${CMAKE_INSTALL_LIBEXECDIR}/zvisp-simulator)
set(staging ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${staging})

# zvisp_install(<component> <target> <directory> [<file of the universal build>])
function(zvisp_install component target directory)
  if(NOT TARGET ${target})
    return()
  elseif(CMAKE_CROSSCOMPILING AND APPLE)
    # scripts/build-macos.sh joins the slices there before it packs.
    install(PROGRAMS ${PROJECT_SOURCE_DIR}/build/macos-universal/${ARGV3}
      DESTINATION ${directory} COMPONENT ${component})
  else()
    install(TARGETS ${target} COMPONENT ${component}
      RUNTIME DESTINATION ${directory} LIBRARY DESTINATION ${directory})
  endif()
endfunction()

# zvisp_install_link(<name>): a link in bin/ to an executable of the tool.
function(zvisp_install_link name)
  file(RELATIVE_PATH target /${CMAKE_INSTALL_BINDIR} /${home}/${name})
  file(CREATE_LINK ${target} ${staging}/${name} SYMBOLIC)
  install(FILES ${staging}/${name} DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# --- The tool ------------------------------------------------------------------------------------

zvisp_install(tool zvisp ${home} zvisp)
zvisp_install_link(zvisp)
install(FILES packaging/plugin-directory.txt DESTINATION ${home}/PlugIn RENAME README)
install(FILES docs/zvisp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp RENAME copyright)
if(TARGET zvisp-line)
  zvisp_install(tool zvisp-line ${home} zvisp-line)
  zvisp_install_link(zvisp-line)
  install(FILES docs/zvisp-line.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(DIRECTORY examples/line DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp/examples
    USE_SOURCE_PERMISSIONS)
  install(FILES line/event.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp)
  install(FILES completions/zvisp-line.bash RENAME zvisp-line
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES completions/zvisp-line.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()

# The shells look in these directories under /usr/local and under /usr, with two exceptions: zsh of
# Debian expects what packages bring in a directory of its own, and fish leaves out /usr/local
# (cmake/InstallSummary.cmake.in says what to add). They serve zvisp-simulator as well.
install(FILES completions/zvisp.bash RENAME zvisp
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completions/zvisp.bash RENAME zvisp-simulator
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completions/zvisp.fish completions/zvisp-simulator.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
set(zsh_completions "\"${PROJECT_SOURCE_DIR}/completions/_zvisp\"")
if(TARGET zvisp-line)
  string(APPEND zsh_completions " \"${PROJECT_SOURCE_DIR}/completions/_zvisp-line\"")
endif()
configure_file(cmake/InstallZsh.cmake.in ${staging}/InstallZsh.cmake @ONLY)
install(SCRIPT ${staging}/InstallZsh.cmake)

# For authors of plug-ins: the headers, a package that find_package(zvisp) finds, and the template.
add_library(zvisp_plugin_api INTERFACE)
add_library(zvisp::plugin ALIAS zvisp_plugin_api)
set_target_properties(zvisp_plugin_api PROPERTIES EXPORT_NAME plugin)
# What a plug-in needs at least to include the headers.
target_compile_features(zvisp_plugin_api INTERFACE c_std_99 cxx_std_11)
target_include_directories(zvisp_plugin_api INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zvisp>)
install(FILES
    src/plugin/zvisp_plugin.h src/plugin/command_setting.h src/plugin/digital_sign_args.h
    src/plugin/record_language.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zvisp/plugin)
install(TARGETS zvisp_plugin_api EXPORT zvispTargets)
set(package ${CMAKE_INSTALL_DATADIR}/cmake/zvisp)
install(EXPORT zvispTargets NAMESPACE zvisp:: DESTINATION ${package})
write_basic_package_version_file(${staging}/zvispConfigVersion.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES ${staging}/zvispConfigVersion.cmake cmake/zvispConfig.cmake cmake/Plugins.cmake
    cmake/CheckPluginExports.cmake
  DESTINATION ${package})
install(FILES cmake/macos/private_new.cpp DESTINATION ${package}/macos)
install(FILES examples/plugin/README.md examples/plugin/CMakeLists.txt examples/plugin/plugin.c
    examples/plugin/device.h examples/plugin/device.c
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp/examples/plugin)

# --- The simulator -------------------------------------------------------------------------------

if(ZVISP_BUILD_SIMULATOR)
  set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME simulator)
  zvisp_install(simulator zvisp ${simulator_home} zvisp)
  zvisp_install(simulator isp_simulator ${simulator_home}/PlugIn PlugIn/libIsp.dylib)
  zvisp_install(simulator sign_reference ${simulator_home} libSignVerify.dylib)
  file(RELATIVE_PATH zvisp_simulator_from_bin /${CMAKE_INSTALL_BINDIR} /${simulator_home})
  configure_file(packaging/zvisp-simulator.in ${staging}/zvisp-simulator @ONLY)
  install(PROGRAMS ${staging}/zvisp-simulator DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES docs/zvisp-simulator.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp-simulator RENAME copyright)
  install(FILES simulator/README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zvisp-simulator)
  set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tool)
endif()
