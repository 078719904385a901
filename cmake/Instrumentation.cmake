# SPDX-License-Identifier: MIT
# Builds that watch the program while its tests run. They change every target, third parties'
# included, so that what one library sees fits what the next one does.
set(ZVISP_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined")
option(ZVISP_COVERAGE "Count the lines and branches that the tests reach" OFF)

if(ZVISP_SANITIZE)
  add_compile_options(
    -fsanitize=${ZVISP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZVISP_SANITIZE})
endif()

if(ZVISP_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

if(ZVISP_BUILD_FUZZERS)
  # The fuzzer steers by the branches that an input takes in our code.
  add_compile_options(-fsanitize=fuzzer-no-link)
  if(NOT ZVISP_SANITIZE)
    # To trace each comparison as well takes as long as all the rest. The slower build does it.
    add_compile_options(-fno-sanitize-coverage=trace-cmp)
  endif()
endif()

# What ships is never instrumented, so tests of what ships leave such builds out.
set(ZVISP_INSTRUMENTED FALSE)
if(ZVISP_SANITIZE OR ZVISP_COVERAGE OR ZVISP_BUILD_FUZZERS)
  set(ZVISP_INSTRUMENTED TRUE)
endif()
