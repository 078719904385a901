# SPDX-License-Identifier: MIT
# Every target of the project is compiled with these; a warning is an error.
set(zvisp_common_warnings
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wcast-align -Wcast-qual
  -Wformat=2 -Wundef -Wvla -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    -Wextra-semi -Wzero-as-null-pointer-constant>)

# What ships is also held to -Wsign-conversion; in tests, literal offsets and sizes are plain ints,
# and clang has to be told, because its -Wconversion brings that warning along.
add_library(zvisp_warnings INTERFACE)
target_compile_options(zvisp_warnings INTERFACE ${zvisp_common_warnings} -Wno-sign-conversion)
add_library(zvisp_product_warnings INTERFACE)
target_compile_options(zvisp_product_warnings INTERFACE ${zvisp_common_warnings} -Wsign-conversion)
