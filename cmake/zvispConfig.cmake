# SPDX-License-Identifier: MIT
# What find_package(zvisp) gives to authors of plug-ins: the target zvisp::plugin, which has the
# headers and the language level that they need, and the function zvisp_add_plugin.
# The project that asks may follow older rules; these hold for the files below.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/zvispTargets.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/Plugins.cmake)
