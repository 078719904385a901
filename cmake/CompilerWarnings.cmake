# SPDX-License-Identifier: MIT
# Every target of the project is compiled with these. A warning is an error only where
# CMAKE_COMPILE_WARNING_AS_ERROR asks for it: in the presets and in continuous integration. A
# compiler that is newer than ours must not break a stranger's build.
set(zvisp_common_warnings
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wcast-align -Wcast-qual
  -Wformat=2 -Wundef -Wvla
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    -Wextra-semi -Wzero-as-null-pointer-constant>)

# What ships is also held to -Wsign-conversion; in tests, literal offsets and sizes are plain ints,
# and clang needs the second option, because its -Wconversion includes that warning.
# cmake/Hardening.cmake adds the rest of what ships to zvisp_product.
add_library(zvisp_warnings INTERFACE)
target_compile_options(zvisp_warnings INTERFACE ${zvisp_common_warnings} -Wno-sign-conversion)
add_library(zvisp_product INTERFACE)
target_compile_options(zvisp_product INTERFACE ${zvisp_common_warnings} -Wsign-conversion)
