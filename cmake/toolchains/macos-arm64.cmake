# SPDX-License-Identifier: MIT
# The Apple silicon slice of the macOS binaries.
set(ZVISP_MACOS_CPU aarch64)
set(CMAKE_SYSTEM_PROCESSOR arm64)
include(${CMAKE_CURRENT_LIST_DIR}/zig-macos.cmake)
