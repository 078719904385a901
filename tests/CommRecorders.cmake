# SPDX-License-Identifier: MIT
# What the tests of the communication proxy need: calls by slot, and the recording libraries.
set(comm_recorders ${CMAKE_BINARY_DIR}/tests/comm_recorders)
add_custom_command(
  OUTPUT ${comm_recorders}/built
  COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/support/make_comm_recorders.sh
          ${CMAKE_C_COMPILER} ${CMAKE_CURRENT_LIST_DIR} ${comm_recorders}
  COMMAND ${CMAKE_COMMAND} -E touch ${comm_recorders}/built
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/support/make_comm_recorders.sh
          ${CMAKE_CURRENT_LIST_DIR}/support/comm_recorder.c
          ${CMAKE_CURRENT_LIST_DIR}/support/comm_recorder.h
  COMMENT "Building the recording communication libraries")
add_custom_target(comm_recorders DEPENDS ${comm_recorders}/built)

target_sources(unit_plugin PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/support/comm_expected.cpp ${CMAKE_CURRENT_LIST_DIR}/support/comm_slot.c)
target_compile_definitions(unit_plugin PRIVATE ZVISP_COMM_RECORDERS="${comm_recorders}")
add_dependencies(unit_plugin comm_recorders)
