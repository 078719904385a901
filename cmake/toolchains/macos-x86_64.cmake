# SPDX-License-Identifier: MIT
# The Intel slice of the macOS binaries.
set(ZVISP_MACOS_CPU x86_64)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/zig-macos.cmake)
