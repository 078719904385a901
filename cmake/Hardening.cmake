# SPDX-License-Identifier: MIT
# What protects an operator's machine from a slip in our code, at no cost that a run can measure.
# Every target that ships links zvisp_product, and gets the warnings along with it.
include(CheckLinkerFlag)
include(CheckPIESupported)

# Debian's compiler makes position-independent executables unasked; others must be asked to.
check_pie_supported(LANGUAGES C CXX)

target_compile_options(zvisp_product INTERFACE
  -fstack-protector-strong -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
  $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)

foreach(flag IN ITEMS -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  string(MAKE_C_IDENTIFIER "ZVISP_LINKER_HAS${flag}" has_flag)
  check_linker_flag(CXX ${flag} ${has_flag})
  if(${has_flag})
    target_link_options(zvisp_product INTERFACE ${flag})
  endif()
endforeach()
