#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Looks for slips without running anything: format, scripts, cppcheck and clang-tidy. Ends non-zero
# with the findings of the first tool that has any. A wrong finding is silenced where it is,
# with the reason next to it.
#
#   scripts/static-analysis.sh
set -euo pipefail
cd "$(dirname "$0")/.."

echo "clang-format ..."
git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format --dry-run --Werror

echo "shellcheck ..."
git ls-files demo test .ci/run '*.sh' examples/line/may-program examples/line/to-mes |
  xargs shellcheck

echo "cppcheck ..."
git ls-files 'src/*.cpp' 'simulator/*.cpp' 'line/*.cpp' |
  xargs cppcheck --enable=warning,performance,portability --inline-suppr --error-exitcode=1 \
    --quiet --std=c++20 -j "${JOBS:-2}" -Isrc -Isimulator -I.

echo "clang-tidy ..."
cmake -S . -B build/analysis -G Ninja -DZVISP_BUILD_TESTS=OFF \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
# One file a process: version 14 takes the second file's va_list for an unset one.
git ls-files 'src/*.cpp' 'simulator/*.cpp' 'line/*.cpp' | grep -v _macos.cpp |
  xargs -P "${JOBS:-2}" -n 1 clang-tidy -p build/analysis --quiet 2>&1 |
  { grep -v ' warnings\? generated\.$' || true; }

echo "Static analysis: nothing found."
