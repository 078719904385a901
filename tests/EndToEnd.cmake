# SPDX-License-Identifier: MIT
# Tests that run the shipped executable with plug-ins of their own next to it.
set(ZVISP_TEST_PLUGIN_DIR ${CMAKE_BINARY_DIR}/tests/plugins)
set(test_plugins)

# zvisp_add_test_plugin(<name> SOURCES <files...> [DEFINITIONS <macros...>]): a library that only
# tests load. It keeps its name, unlike the plug-ins that the tool asks for.
function(zvisp_add_test_plugin name)
  cmake_parse_arguments(TEST_PLUGIN "" "" "SOURCES;DEFINITIONS" ${ARGN})
  zvisp_add_loaded_library(${name} FILE ${name} DIRECTORY ${ZVISP_TEST_PLUGIN_DIR}
                           SOURCES ${TEST_PLUGIN_SOURCES} LIBRARIES zvisp_product)
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE ${TEST_PLUGIN_DEFINITIONS})
  set(test_plugins ${test_plugins} ${name} PARENT_SCOPE)
endfunction()

set(recording_isp support/recording_isp_plugin.cpp support/recording_plugin.cpp)
set(recording_sign support/recording_sign_plugin.cpp support/recording_plugin.cpp)
zvisp_add_test_plugin(recording_isp SOURCES ${recording_isp})
zvisp_add_test_plugin(recording_isp_only_required
  SOURCES ${recording_isp} DEFINITIONS LACKS_OPTIONAL)
zvisp_add_test_plugin(recording_isp_with_never_bound
  SOURCES ${recording_isp} DEFINITIONS WITH_NEVER_BOUND)
foreach(call IN ITEMS IspFlash SetCommInterface RecordFWVersion GetKeyFromFlash SetUIFunction
                      DumpFlash)
  zvisp_add_test_plugin(recording_isp_lacks_${call}
    SOURCES ${recording_isp} DEFINITIONS LACKS_${call})
endforeach()
zvisp_add_test_plugin(recording_sign SOURCES ${recording_sign})
foreach(call IN ITEMS SignFwExport VerifySignatureExport)
  zvisp_add_test_plugin(recording_sign_lacks_${call}
    SOURCES ${recording_sign} DEFINITIONS LACKS_${call})
endforeach()

# As a customer's: the oldest languages that the header is written for, and no library of ours.
zvisp_add_test_plugin(plain_records SOURCES support/plain_records_plugin.cpp)
set_target_properties(plain_records PROPERTIES CXX_STANDARD 11)
zvisp_add_test_plugin(surroundings SOURCES support/surroundings_plugin.c)
set_target_properties(surroundings PROPERTIES C_STANDARD 99 C_EXTENSIONS ON)

if(NOT APPLE)
  zvisp_add_test_plugin(looked_up SOURCES support/looked_up_plugin.c)
endif()

if(NOT TARGET zvisp)
  return()
endif()
file(GLOB e2e_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/e2e/*_test.cpp)
if(NOT TARGET isp_simulator)
  list(FILTER e2e_sources EXCLUDE REGEX "/simulated_")
endif()
add_executable(e2e ${e2e_sources} support/installation.cpp support/simulated_display.cpp)
set_target_properties(e2e PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
target_compile_definitions(e2e PRIVATE
  ZVISP_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples"
  ZVISP_EXECUTABLE="$<TARGET_FILE:zvisp>" ZVISP_TEST_PLUGIN_DIR="${ZVISP_TEST_PLUGIN_DIR}")
target_link_libraries(e2e PRIVATE
  test_support zvisp_warnings GTest::gmock GTest::gtest_main ${CMAKE_DL_LIBS})
add_dependencies(e2e zvisp ${test_plugins})
if(TARGET isp_simulator)
  target_compile_definitions(e2e PRIVATE ZVISP_SIMULATOR="$<TARGET_FILE:isp_simulator>")
  add_dependencies(e2e isp_simulator)
endif()
# Exhausts the memory of a run, by a call that only this C library offers; a sanitizer puts an
# allocator of its own in its place.
include(CheckSymbolExists)
check_symbol_exists(__GLIBC__ features.h ZVISP_HAS_GLIBC)
if(ZVISP_HAS_GLIBC AND NOT ZVISP_SANITIZE)
  add_library(failing_calloc SHARED support/failing_calloc.cpp)
  set_target_properties(failing_calloc PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${ZVISP_TEST_PLUGIN_DIR})
  target_compile_definitions(e2e PRIVATE ZVISP_FAILING_CALLOC="$<TARGET_FILE:failing_calloc>")
  add_dependencies(e2e failing_calloc)
endif()
add_test(NAME e2e_flash_one.VerdictIsRightInEveryCase COMMAND
  ${CMAKE_CURRENT_SOURCE_DIR}/e2e/flash_one_test.sh $<TARGET_FILE:zvisp>
  $<TARGET_FILE:recording_isp> ${PROJECT_SOURCE_DIR}/examples/flash-one.sh)
set_tests_properties(e2e_flash_one.VerdictIsRightInEveryCase PROPERTIES LABELS e2e TIMEOUT 120)

if(NOT ZVISP_INSTRUMENTED)
  add_test(NAME e2e_readme.SmallestPluginIsCalled COMMAND
    sh ${CMAKE_CURRENT_SOURCE_DIR}/e2e/readme_plugin_test.sh $<TARGET_FILE:zvisp>
    ${PROJECT_SOURCE_DIR})
  set_tests_properties(e2e_readme.SmallestPluginIsCalled PROPERTIES LABELS e2e TIMEOUT 120)
endif()
if(TARGET isp_simulator AND TARGET sign_reference)
  add_test(NAME e2e_readme.ExamplesSucceed COMMAND
    ${CMAKE_CURRENT_SOURCE_DIR}/e2e/readme_test.sh $<TARGET_FILE:zvisp>
    $<TARGET_FILE:isp_simulator> $<TARGET_FILE:sign_reference> ${PROJECT_SOURCE_DIR})
  set_tests_properties(e2e_readme.ExamplesSucceed PROPERTIES LABELS e2e TIMEOUT 120)
endif()

# A thousand runs at once take their time on a busy machine or with a sanitizer.
gtest_discover_tests(e2e PROPERTIES LABELS e2e TIMEOUT 300)
