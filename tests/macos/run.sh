#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the macOS binaries and checks them. Without the compiler for it the test is skipped,
# except in continuous integration, which installs it.
set -eu

cd "$(dirname "$0")/../.."
if ! scripts/install-zig.sh --find >/dev/null; then
  if [ -z "${CI:-}" ]; then
    echo "skipped: the Zig compiler is not installed; scripts/install-zig.sh installs it"
    exit 77
  fi
  scripts/install-zig.sh >/dev/null
fi
scripts/build-macos.sh
python3 tests/macos/check_binaries.py build/macos-universal
python3 tests/macos/check_binaries_test.py build/macos-universal
