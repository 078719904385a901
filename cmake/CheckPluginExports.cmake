# SPDX-License-Identifier: MIT
# Run after a plug-in was linked: removes it and fails when it lacks a required call. The tools
# themselves say nothing but that the plug-in could not be loaded.
#
#   cmake -D file=PLUG-IN -D nm=NM -D apple=TRUTH -D "required=CALL ..." -P CheckPluginExports.cmake
set(arguments -D --defined-only)
if(apple)
  set(arguments -g -U)
endif()
execute_process(COMMAND ${nm} ${arguments} ${file}
  OUTPUT_VARIABLE symbols ERROR_VARIABLE said RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "${nm} cannot read ${file}: ${said}")
endif()

string(REPLACE " " ";" required "${required}")
set(missing)
foreach(call IN LISTS required)
  if(NOT symbols MATCHES " T _?${call}\n")
    list(APPEND missing ${call})
  endif()
endforeach()
if(missing)
  file(REMOVE ${file})
  list(JOIN missing ", " missing)
  message(FATAL_ERROR "${file} lacks required calls and was removed: ${missing}. Define each in a "
    "source that includes plugin/zvisp_plugin.h, which gives it C linkage and exports it.")
endif()
