# SPDX-License-Identifier: MIT
# What find_package(zvisp) gives to authors of plug-ins: the target zvisp::plugin, which has the
# headers and the language level that they need, and the function zvisp_add_plugin.
include(${CMAKE_CURRENT_LIST_DIR}/zvispTargets.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/Plugins.cmake)
