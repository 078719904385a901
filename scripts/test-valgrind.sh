#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs end-to-end tests with the tool as it ships under valgrind; an error of memory fails the test.
# Options go to ctest.
#
# Left out are tests that count runs by the hundred or files by the hundred thousand, and those that
# valgrind itself would fail: they look at the name that a run was started by, or bring an allocator.
# Leaks are left to the sanitizer: in what ships, each plug-in has a C++ runtime of its own, whose
# reserve for exceptions goes down with the plug-in, and valgrind would report that.
set -eu
cd "$(dirname "$0")/.."

left_out='^(FaultMatrix|SimulatedCrowd|SearchOfManyFiles|OutOfMemory)\.'
left_out="$left_out|^CommandLine\.(MistakesAreTold|ALineWithNothingButMistakes)"

cmake -S . -B build -G Ninja -DZVISP_BUILD_TESTS=ON >/dev/null
cmake --build build -j "${JOBS:-2}"
launcher="valgrind --quiet --error-exitcode=99 --suppressions=$PWD/tests/valgrind.supp"
ZVISP_TEST_LAUNCHER=$launcher ctest --test-dir build --output-on-failure --no-tests=error \
  -j "${JOBS:-2}" -L e2e -E "$left_out" "$@"
