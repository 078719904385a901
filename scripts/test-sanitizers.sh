#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs every test under the address, leak and undefined-behaviour sanitizers, and the end-to-end
# tests on simulated displays with the optimised tool under valgrind. The first finding ends the
# program that it is in, and so fails its test. Options go to the first ctest.
#
# Nothing of ours is suppressed: a plug-in that stays loaded until the end is still reachable, which
# is no leak. Leaks are left to the sanitizer: in what ships, each plug-in has a C++ runtime of its
# own, whose reserve for exceptions goes down with the plug-in, and valgrind would report that.
set -eu
cd "$(dirname "$0")/.."

cmake --preset asan >/dev/null
cmake --build --preset asan -j "${JOBS:-2}"
# Signals stay the system's own: tests of crashing plug-ins look at how the process ended.
ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:handle_segv=0:handle_abort=0 \
  ctest --preset asan "$@"

cmake --preset release >/dev/null
cmake --build --preset release -j "${JOBS:-2}"
ZVISP_TEST_LAUNCHER="valgrind --quiet --error-exitcode=99" \
  ctest --preset release -R '^(SimulatedDisplay|Record|Dispatch)\.'
