#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds everything with clang and libc++, the standard library of macOS, and runs all tests.
set -eu

cd "$(dirname "$0")/.."
cmake --preset libcxx
cmake --build --preset libcxx -j "${JOBS:-2}"
ctest --preset libcxx "$@"
