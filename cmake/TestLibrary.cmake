# SPDX-License-Identifier: MIT
# GoogleTest: the installed one, or built from its sources where it must share the standard library
# of the build.
set(ZVISP_GTEST_SOURCE "" CACHE PATH "Sources of GoogleTest, instead of the installed library")

if(ZVISP_GTEST_SOURCE)
  block()
    set(INSTALL_GTEST OFF)
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)  # Its warnings are not ours to mend.
    add_subdirectory(${ZVISP_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  endblock()
else()
  find_package(GTest)
  if(NOT GTest_FOUND)
    message(FATAL_ERROR "The tests need GoogleTest: run scripts/dependencies.sh test, or leave the "
                        "tests out with -DZVISP_BUILD_TESTS=OFF")
  endif()
endif()
