# SPDX-License-Identifier: MIT
# zvisp_add_plugin(<target> FILE <name without suffix> DIRECTORY <dir> SOURCES <files...>
#                  [LIBRARIES <libs...>] [EXPORTS <calls...>])
# A library that is opened at run time. Plug-ins keep the ".dylib" name on every platform,
# because the tool asks for them by that name, and export nothing but their documented calls; with
# EXPORTS, also none of the templates of the C++ library, which come with a visibility of their own.
function(zvisp_add_plugin target)
  cmake_parse_arguments(PLUGIN "" "FILE;DIRECTORY" "SOURCES;LIBRARIES;EXPORTS" ${ARGN})
  add_library(${target} SHARED ${PLUGIN_SOURCES})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX ".dylib" OUTPUT_NAME ${PLUGIN_FILE} NO_SONAME ON
    LIBRARY_OUTPUT_DIRECTORY ${PLUGIN_DIRECTORY})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PRIVATE
    zvisp_product zvisp_static_runtime ${PLUGIN_LIBRARIES})
  # gcc marks some symbols of its headers as unique in the process, and the loader then never
  # unloads the library.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  if(APPLE)
    target_link_options(${target} PRIVATE -Wl,-install_name,@rpath/${PLUGIN_FILE}.dylib)
  else()
    target_link_options(${target} PRIVATE -Wl,--exclude-libs,ALL)
  endif()
  if(PLUGIN_EXPORTS)
    zvisp_limit_exports(${target} ${PLUGIN_EXPORTS})
  endif()
endfunction()

function(zvisp_limit_exports target)
  set(list ${CMAKE_CURRENT_BINARY_DIR}/${target}.exports)
  if(APPLE)
    list(TRANSFORM ARGN PREPEND "_" OUTPUT_VARIABLE names)
    list(JOIN names "\n" text)
    file(CONFIGURE OUTPUT ${list} CONTENT "${text}\n")
    target_link_options(${target} PRIVATE -Wl,-exported_symbols_list,${list})
  else()
    list(JOIN ARGN "; " text)
    file(CONFIGURE OUTPUT ${list} CONTENT "{ global: ${text}; local: *; };\n")
    target_link_options(${target} PRIVATE -Wl,--version-script=${list})
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${list})
endfunction()
