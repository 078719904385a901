#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs every test; options go to ctest. Ends with the runner's summary.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/dependencies.sh build test
cmake -S . -B build -G Ninja -DZVISP_BUILD_TESTS=ON >/dev/null
cmake --build build
ctest --test-dir build --output-on-failure --parallel "$(getconf _NPROCESSORS_ONLN)" "$@"
