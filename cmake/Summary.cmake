# SPDX-License-Identifier: MIT
# zvisp_leave_out(<what> <why>): remembers what this build is without, so that whoever configures or
# installs it sees it in the last lines.
function(zvisp_leave_out what why)
  set_property(GLOBAL APPEND PROPERTY ZVISP_LEFT_OUT "left out: ${what}: ${why}")
endfunction()

# zvisp_print_summary(): says at the end of the configuration, and again at the end of an
# installation of everything, where things are and what is left out.
function(zvisp_print_summary)
  get_property(ZVISP_LEFT_OUT GLOBAL PROPERTY ZVISP_LEFT_OUT)
  message(STATUS "zvisp ${PROJECT_VERSION} (${CMAKE_BUILD_TYPE}) will be ${ZVISP_BIN_DIR}/zvisp")
  foreach(line IN LISTS ZVISP_LEFT_OUT)
    message(STATUS "${line}")
  endforeach()
  configure_file(cmake/InstallSummary.cmake.in ${CMAKE_BINARY_DIR}/InstallSummary.cmake @ONLY)
  install(SCRIPT ${CMAKE_BINARY_DIR}/InstallSummary.cmake COMPONENT summary)
endfunction()
