#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds everything with clang and libc++, the standard library of macOS, and runs all tests under
# the address, leak and undefined-behaviour sanitizers. The first finding ends the program that it
# is in, and so fails its test. Options go to ctest.
#
# Nothing of ours is suppressed: a plug-in that stays loaded until the end is still reachable, which
# is no leak.
set -eu
cd "$(dirname "$0")/.."

cmake --preset asan >/dev/null
cmake --build --preset asan -j "${JOBS:-2}"
# Signals stay the system's own: tests of crashing plug-ins look at how the process ended.
ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:handle_segv=0:handle_abort=0 \
  ctest --preset asan "$@"
