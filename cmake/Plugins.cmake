# SPDX-License-Identifier: MIT
# How plug-ins are built: ours, and those of authors, for whom this file is installed and
# find_package(zvisp) includes it.
include_guard()

# The calls that the tools look up: they refuse a plug-in without a required one.
set(zvisp_ISP_required IspFlash SetCommInterface RecordFWVersion GetKeyFromFlash SetUIFunction
  DumpFlash)
set(zvisp_ISP_optional GetUserDefinedInfoFromDDCCI IspEeprom EnterISPModeExport ResetMCUExport
  GetScalerType)
set(zvisp_SIGNATURE_required SignFwExport VerifySignatureExport)
set(zvisp_SIGNATURE_optional)

# zvisp_add_plugin(<target> [ISP | SIGNATURE] SOURCES <files...> [LIBRARIES <libs...>]
#                  [DIRECTORY <dir>])
# A plug-in as the tools ask for it, on every platform: PlugIn/libIsp.dylib, or with SIGNATURE
# libSignVerify.dylib, in DIRECTORY, or without it in the build directory. It exports the calls of
# zvisp_plugin.h and nothing else, leaves no symbol for the loader to miss, and holds the C++
# runtime that it needs. A build whose plug-in lacks a required call fails and names it.
function(zvisp_add_plugin target)
  cmake_parse_arguments(PLUGIN "ISP;SIGNATURE" "DIRECTORY" "SOURCES;LIBRARIES" ${ARGN})
  if(PLUGIN_UNPARSED_ARGUMENTS OR NOT PLUGIN_SOURCES OR (PLUGIN_ISP AND PLUGIN_SIGNATURE))
    message(FATAL_ERROR "zvisp_add_plugin(${target} ${ARGN}): give one of ISP and SIGNATURE, and "
      "SOURCES; nothing else than LIBRARIES and DIRECTORY may follow")
  endif()
  if(NOT PLUGIN_DIRECTORY)
    set(PLUGIN_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  endif()
  set(kind ISP)
  set(file libIsp)
  set(directory ${PLUGIN_DIRECTORY}/PlugIn)
  if(PLUGIN_SIGNATURE)
    set(kind SIGNATURE)
    set(file libSignVerify)
    set(directory ${PLUGIN_DIRECTORY})
  endif()
  zvisp_add_loaded_library(${target} FILE ${file} DIRECTORY ${directory}
    SOURCES ${PLUGIN_SOURCES} LIBRARIES ${PLUGIN_LIBRARIES}
    EXPORTS ${zvisp_${kind}_required} ${zvisp_${kind}_optional})
  zvisp_check_exports(${target} ${zvisp_${kind}_required})
endfunction()

# zvisp_add_loaded_library(<target> FILE <name without suffix> DIRECTORY <dir> SOURCES <files...>
#                          [LIBRARIES <libs...>] [EXPORTS <calls...>])
# A library that is opened at run time, of any name and with any calls. With EXPORTS, it also
# exports none of the templates of the C++ library, which come with a visibility of their own.
function(zvisp_add_loaded_library target)
  cmake_parse_arguments(LIBRARY "" "FILE;DIRECTORY" "SOURCES;LIBRARIES;EXPORTS" ${ARGN})
  add_library(${target} SHARED ${LIBRARY_SOURCES})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX ".dylib" OUTPUT_NAME ${LIBRARY_FILE} NO_SONAME ON
    # The expression keeps generators for several configurations from adding a directory.
    LIBRARY_OUTPUT_DIRECTORY $<1:${LIBRARY_DIRECTORY}>
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${target} PRIVATE zvisp::plugin ${LIBRARY_LIBRARIES})
  zvisp_add_static_runtime()
  # On macOS it brings a source in C++ along, which a plug-in in C cannot link.
  if(TARGET zvisp_static_runtime AND
     (NOT APPLE OR "${LIBRARY_SOURCES};" MATCHES "\\.(cc|cpp|cxx|C);"))
    target_link_libraries(${target} PRIVATE zvisp_static_runtime)
  endif()
  # gcc marks some symbols of its headers as unique in the process, and the loader then never
  # unloads the library.
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)
  if(APPLE)
    target_link_options(${target} PRIVATE -Wl,-install_name,@rpath/${LIBRARY_FILE}.dylib)
  else()
    target_link_options(${target} PRIVATE -Wl,--exclude-libs,ALL)
    zvisp_is_sanitized(sanitized)
    if(NOT sanitized)
      # What a sanitizer adds is undefined until the library is loaded; nothing else may be.
      target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()
  endif()
  if(LIBRARY_EXPORTS)
    zvisp_limit_exports(${target} ${LIBRARY_EXPORTS})
  endif()
endfunction()

function(zvisp_limit_exports target)
  set(list ${CMAKE_CURRENT_BINARY_DIR}/${target}.exports)
  if(APPLE)
    # A pattern, because the linker refuses a whole name that the library does not have.
    list(TRANSFORM ARGN REPLACE "(.+)" "_\\1*" OUTPUT_VARIABLE names)
    list(JOIN names "\n" text)
    file(CONFIGURE OUTPUT ${list} CONTENT "${text}\n")
    target_link_options(${target} PRIVATE -Wl,-exported_symbols_list,${list})
  else()
    list(JOIN ARGN "; " text)
    file(CONFIGURE OUTPUT ${list} CONTENT "{ global: ${text}; local: *; };\n")
    target_link_options(${target} PRIVATE -Wl,--version-script=${list})
    # Newer linkers of LLVM refuse a name in the list that the library does not have.
    include(CheckLinkerFlag)
    zvisp_any_language(language)
    check_linker_flag(${language} -Wl,--undefined-version ZVISP_LINKER_HAS_UNDEFINED_VERSION)
    if(ZVISP_LINKER_HAS_UNDEFINED_VERSION)
      target_link_options(${target} PRIVATE -Wl,--undefined-version)
    endif()
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${list})
endfunction()

# zvisp_check_exports(<target> <calls...>): fails the build of a library that lacks one of them.
function(zvisp_check_exports target)
  if(NOT CMAKE_NM)
    message(FATAL_ERROR "nm is needed to check the plug-in's exports: name it in CMAKE_NM")
  endif()
  list(JOIN ARGN " " calls)
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    COMMAND ${CMAKE_COMMAND} -D "file=$<TARGET_FILE:${target}>" -D "nm=${CMAKE_NM}"
      -D "apple=${APPLE}" -D "required=${calls}"
      -P ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/CheckPluginExports.cmake)
endfunction()

# zvisp_add_static_runtime(): the target zvisp_static_runtime, if there is C++ at all. With it the
# C++ runtime goes into the binary: no search for it at start-up, and a plug-in built with another
# runtime cannot meet ours.
function(zvisp_add_static_runtime)
  get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
  if(TARGET zvisp_static_runtime OR NOT "CXX" IN_LIST languages)
    return()
  endif()
  add_library(zvisp_static_runtime INTERFACE)
  # What of it is not called stays out.
  set(flags -static-libstdc++ -static-libgcc -Wl,--gc-sections)
  zvisp_is_sanitized(sanitized)
  if(sanitized)
    # A sanitizer has to see one set of memory operators in the whole process.
    set(flags)
  endif()
  include(CheckLinkerFlag)
  foreach(flag IN LISTS flags)
    string(MAKE_C_IDENTIFIER "ZVISP_LINKER_HAS${flag}" has_flag)
    check_linker_flag(CXX ${flag} ${has_flag})
    if(${has_flag})
      target_link_options(zvisp_static_runtime INTERFACE $<$<LINK_LANGUAGE:CXX>:${flag}>)
    endif()
  endforeach()
  if(APPLE)
    # The implicit declarations of the memory operators overrule -fvisibility; this does not.
    add_library(zvisp_private_new OBJECT ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/macos/private_new.cpp)
    set_target_properties(zvisp_private_new PROPERTIES
      POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden CXX_STANDARD 17)
    target_compile_options(zvisp_private_new PRIVATE -fvisibility-global-new-delete=force-hidden)
    target_sources(zvisp_static_runtime INTERFACE $<TARGET_OBJECTS:zvisp_private_new>)
  endif()
endfunction()

# zvisp_is_sanitized(<variable>): whether the targets of this directory get a sanitizer.
function(zvisp_is_sanitized result)
  get_property(options DIRECTORY PROPERTY COMPILE_OPTIONS)
  set(${result} FALSE PARENT_SCOPE)
  if("${options} ${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS}" MATCHES "-fsanitize=")
    set(${result} TRUE PARENT_SCOPE)
  endif()
endfunction()

function(zvisp_any_language result)
  get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
  set(${result} C PARENT_SCOPE)
  if(NOT "C" IN_LIST languages)
    set(${result} CXX PARENT_SCOPE)
  endif()
endfunction()
