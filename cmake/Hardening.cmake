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

# The C++ runtime goes into each binary: no search for it at start-up, and a plug-in
# built with another runtime cannot meet ours.
add_library(zvisp_static_runtime INTERFACE)
# What of it is not called stays out.
set(static_runtime_flags -static-libstdc++ -static-libgcc -Wl,--gc-sections)
if(ZVISP_SANITIZE)
  # A sanitizer has to see one set of memory operators in the whole process.
  set(static_runtime_flags)
endif()
foreach(flag IN LISTS static_runtime_flags)
  string(MAKE_C_IDENTIFIER "ZVISP_LINKER_HAS${flag}" has_flag)
  check_linker_flag(CXX ${flag} ${has_flag})
  if(${has_flag})
    target_link_options(zvisp_static_runtime INTERFACE ${flag})
  endif()
endforeach()

if(APPLE)
  # The implicit declarations of the memory operators overrule -fvisibility; this does not.
  add_library(zvisp_private_new OBJECT ${CMAKE_CURRENT_LIST_DIR}/macos/private_new.cpp)
  target_compile_options(zvisp_private_new PRIVATE -fvisibility-global-new-delete=force-hidden)
  target_link_libraries(zvisp_private_new PRIVATE zvisp_product)
  target_sources(zvisp_static_runtime INTERFACE $<TARGET_OBJECTS:zvisp_private_new>)
endif()
