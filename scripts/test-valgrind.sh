#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs end-to-end tests with the tool as it ships under valgrind; an error of memory fails the test.
# Left out are the tests that count runs by the hundred, or files by the hundred thousand. Options go
# to ctest.
#
# Leaks are left to the sanitizer: in what ships, each plug-in has a C++ runtime of its own, whose
# reserve for exceptions goes down with the plug-in, and valgrind would report that.
set -eu
cd "$(dirname "$0")/.."

cmake -S . -B build -G Ninja -DZVISP_BUILD_TESTS=ON >/dev/null
cmake --build build -j "${JOBS:-2}"
ZVISP_TEST_LAUNCHER="valgrind --quiet --error-exitcode=99" \
  ctest --test-dir build --output-on-failure --no-tests=error -j "${JOBS:-2}" -L e2e \
  -E '^(FaultMatrix|SimulatedCrowd|SearchOfManyFiles)\.' "$@"
