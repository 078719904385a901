#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the tests where a slip of memory shows: under the sanitizers, or under valgrind.
#
#   scripts/test-memory.sh sanitizers [option of ctest ...]
#   scripts/test-memory.sh valgrind [option of ctest ...]
#
# sanitizers: everything is built with clang and libc++, the standard library of macOS, and tested
# under the address, leak and undefined-behaviour sanitizers. The first finding ends the program
# that it is in, and so fails its test. Nothing of ours is suppressed: a plug-in that stays loaded
# until the end is still reachable, which is not a leak. Left out are tests that run none of it.
#
# valgrind: the tool as it ships runs under valgrind in a selection of the end-to-end tests, above
# all for values that nobody set, which the sanitizers do not see. What they do see is not repeated:
# faults in every combination, crowds of runs, searches in many files. Left out as well is what
# valgrind itself would fail: tests that read the name that a run was started by, or bring an
# allocator. Leaks are the sanitizers' business: in what ships, each plug-in has a C++ runtime of
# its own, whose reserve for exceptions is freed with the plug-in, and valgrind would report that.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

without_our_code='^(completions|manual|macos|fuzz|budget|package|hardening)\.|^includes_point'
for_the_sanitizers='^(FaultMatrix|SimulatedCrowd|SearchOfManyFiles|OutOfMemory)\.'
for_the_sanitizers="$for_the_sanitizers|^line\.|^e2e_readme"
# Many kills, and an allocator of the test's own.
for_the_sanitizers="$for_the_sanitizers|^SignerFiles\.(AKillAtAnyMoment|MemoryThatIsExhausted)"
for_the_sanitizers="$for_the_sanitizers|^CommandLine\.(MistakesAreTold|ALineWithNothingButMistakes)"

sanitizers() {
  cmake --preset asan >/dev/null
  cmake --build --preset asan --parallel "$(processors)"
  ctest --preset asan -E "$without_our_code" "$@"
}

valgrind() {
  configure build -DZVISP_BUILD_TESTS=ON >/dev/null
  cmake --build build --parallel "$(processors)" --target e2e e2e_signing
  local launcher="valgrind --quiet --error-exitcode=99 --suppressions=$PWD/tests/valgrind.supp"
  ZVISP_TEST_LAUNCHER=$launcher ctest --test-dir build --output-on-failure --no-tests=error \
    --parallel "$(processors)" -L e2e -E "$for_the_sanitizers" "$@"
}

case ${1:-} in
  sanitizers | valgrind) "$@" ;;
  *) sed -n '3,6s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac
