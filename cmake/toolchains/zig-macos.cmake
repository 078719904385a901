# SPDX-License-Identifier: MIT
# What both macOS slices share: Zig's clang, headers, libc++ and Mach-O linker. The including file
# sets ZVISP_MACOS_CPU to the processor's name in a target triple.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)

execute_process(
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/../../scripts/install-zig.sh --find
  OUTPUT_VARIABLE zvisp_zig OUTPUT_STRIP_TRAILING_WHITESPACE
  RESULT_VARIABLE zvisp_zig_missing)
if(zvisp_zig_missing)
  message(FATAL_ERROR "The Zig compiler is not installed: run scripts/install-zig.sh")
endif()

# The oldest system is named in the triple because Zig heeds it nowhere else:
# -mmacosx-version-min and MACOSX_DEPLOYMENT_TARGET change nothing.
# -O2 is here so that the checks of the configuration and the project itself share one
# build of libc++, which Zig makes once for each level of optimisation.
set(zvisp_target -target ${ZVISP_MACOS_CPU}-macos.11.0 -O2)
set(CMAKE_C_COMPILER ${zvisp_zig} cc ${zvisp_target})
set(CMAKE_CXX_COMPILER ${zvisp_zig} c++ ${zvisp_target})
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "Named in the target triple" FORCE)
set(CMAKE_OSX_SYSROOT "" CACHE STRING "Zig brings its own" FORCE)

# The archiver and the others of Debian's LLVM understand Mach-O; GNU's do not.
foreach(tool IN ITEMS AR RANLIB NM STRIP OBJDUMP INSTALL_NAME_TOOL)
  string(TOLOWER llvm-${tool} name)
  string(REPLACE _ - name ${name})
  find_program(CMAKE_${tool} NAMES ${name} ${name}-14 REQUIRED)
endforeach()

# Room after the load commands: codesign adds one, and without room for it overwrites the start
# of the code. The result then verifies, and crashes.
foreach(kind IN ITEMS EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-Wl,-headerpad,0x1000")
endforeach()

# iconv is a library of its own on this system, and only its text stub is needed to link.
set(Iconv_INCLUDE_DIR ${CMAKE_CURRENT_LIST_DIR}/../macos CACHE PATH "iconv.h comes with Zig")
set(Iconv_LIBRARY ${CMAKE_CURRENT_LIST_DIR}/../macos/libiconv.tbd CACHE FILEPATH "")
set(Iconv_IS_BUILT_IN OFF CACHE BOOL "")

set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../macos)
