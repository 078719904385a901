# SPDX-License-Identifier: MIT
# Tests of the reference signer, and of signing and verifying through the executable.
if(TARGET sign_reference)
  set(signer_files
    ZVISP_SIGNER_FILE="$<TARGET_FILE:sign_reference>"
    ZVISP_SIGNER_DATA_DIR="${CMAKE_CURRENT_SOURCE_DIR}/data/signer")
  zvisp_add_unit_tests(simulator/signer LIBRARY zvisp_plugin)
  add_dependencies(unit_simulator_signer sign_reference)
  target_compile_definitions(unit_simulator_signer PRIVATE ${signer_files})
endif()

if(NOT TARGET zvisp)
  return()
endif()
add_executable(e2e_signing e2e/signing/validator_test.cpp support/installation.cpp)
set_target_properties(e2e_signing PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
target_compile_definitions(e2e_signing PRIVATE
  ZVISP_EXECUTABLE="$<TARGET_FILE:zvisp>" ZVISP_TEST_PLUGIN_DIR="${ZVISP_TEST_PLUGIN_DIR}")
target_link_libraries(e2e_signing PRIVATE
  test_support zvisp_warnings GTest::gmock GTest::gtest_main ${CMAKE_DL_LIBS})
add_dependencies(e2e_signing zvisp ${test_plugins})
if(TARGET sign_reference)
  target_sources(e2e_signing PRIVATE
    e2e/signing/reference_signer_test.cpp e2e/signing/signer_files_test.cpp)
  target_compile_definitions(e2e_signing PRIVATE
    ${signer_files} ZVISP_SIMULATOR="$<TARGET_FILE:isp_simulator>")
  add_dependencies(e2e_signing sign_reference isp_simulator)
endif()
if(TARGET sign_reference AND ZVISP_HAS_GLIBC AND NOT ZVISP_SANITIZE)
  add_library(failing_libcrypto SHARED support/failing_libcrypto.cpp)
  set_target_properties(failing_libcrypto PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${ZVISP_TEST_PLUGIN_DIR})
  target_link_libraries(failing_libcrypto PRIVATE zvisp_warnings)
  target_compile_definitions(e2e_signing PRIVATE
    ZVISP_FAILING_LIBCRYPTO="$<TARGET_FILE:failing_libcrypto>")
  add_dependencies(e2e_signing failing_libcrypto)
endif()
gtest_discover_tests(e2e_signing PROPERTIES LABELS e2e TIMEOUT 120)

find_program(OPENSSL_COMMAND openssl)
if(TARGET sign_reference AND OPENSSL_COMMAND)
  add_test(NAME e2e_signing_walkthrough COMMAND
    ${CMAKE_CURRENT_SOURCE_DIR}/e2e/signing/walkthrough_test.sh $<TARGET_FILE:zvisp>
    ${PROJECT_SOURCE_DIR}/docs/signing.md)
  set_tests_properties(e2e_signing_walkthrough PROPERTIES LABELS e2e TIMEOUT 120)
endif()
