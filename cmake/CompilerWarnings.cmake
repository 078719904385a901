# SPDX-License-Identifier: MIT
# Every target of the project is compiled with these; a warning is an error.
add_library(zvisp_warnings INTERFACE)
target_compile_options(zvisp_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wcast-align -Wcast-qual
  -Wformat=2 -Wundef -Wvla -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    -Wextra-semi -Wzero-as-null-pointer-constant>)

# What ships is also held to this one; in tests, literal offsets and sizes are plain ints.
add_library(zvisp_product_warnings INTERFACE)
target_link_libraries(zvisp_product_warnings INTERFACE zvisp_warnings)
target_compile_options(zvisp_product_warnings INTERFACE -Wsign-conversion)
