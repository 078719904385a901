# SPDX-License-Identifier: MIT
# zvisp_add_plugin(<target> FILE <name without suffix> DIRECTORY <dir> SOURCES <files...> [LIBRARIES <libs...>])
# A library that is opened at run time. Plug-ins keep the ".dylib" name on every platform,
# because the tool asks for them by that name, and export nothing but their documented calls.
function(zvisp_add_plugin target)
  cmake_parse_arguments(PLUGIN "" "FILE;DIRECTORY" "SOURCES;LIBRARIES" ${ARGN})
  add_library(${target} SHARED ${PLUGIN_SOURCES})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX ".dylib" OUTPUT_NAME ${PLUGIN_FILE} NO_SONAME ON
    LIBRARY_OUTPUT_DIRECTORY ${PLUGIN_DIRECTORY})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PRIVATE
    zvisp_product_warnings zvisp_hardening zvisp_static_runtime ${PLUGIN_LIBRARIES})
  # gcc marks some symbols of its headers as unique in the process, and the loader then never
  # unloads the library.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  if(APPLE)
    target_link_options(${target} PRIVATE -Wl,-install_name,@rpath/${PLUGIN_FILE}.dylib)
  else()
    target_link_options(${target} PRIVATE -Wl,--exclude-libs,ALL)
  endif()
endfunction()
