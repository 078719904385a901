#!/bin/sh
# SPDX-License-Identifier: MIT
# template_macos_test.sh BUILD-DIRECTORY: builds the template and the signer in C++ from a scratch
# installation for both processors of macOS, and checks them as our own binaries are checked.
set -eu

build=$1
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
if ! "$root/scripts/install-zig.sh" --find >/dev/null; then
  if [ -z "${CI:-}" ]; then
    echo "skipped: the Zig compiler is not installed; scripts/install-zig.sh installs it"
    exit 77
  fi
  "$root/scripts/install-zig.sh" >/dev/null
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
cmake --install "$build" --prefix "$prefix" --component tool >/dev/null
lipo=$(command -v llvm-lipo || command -v llvm-lipo-14)
strip=$(command -v llvm-strip || command -v llvm-strip-14)

# universal SOURCE FILE: builds FILE for both processors and joins it in $scratch/universal.
universal() {
  for slice in arm64 x86_64; do
    cmake -G Ninja -S "$1" -B "$scratch/$slice" -DCMAKE_BUILD_TYPE=Release \
      --toolchain "$root/cmake/toolchains/macos-$slice.cmake" \
      -Dzvisp_DIR="$prefix/share/cmake/zvisp" >/dev/null
    cmake --build "$scratch/$slice" >"$scratch/said" || { cat "$scratch/said"; exit 1; }
    "$strip" -x "$scratch/$slice/$2"
  done
  mkdir -p "$scratch/universal"
  "$lipo" -create "$scratch/arm64/$2" "$scratch/x86_64/$2" -output "$scratch/universal/${2##*/}"
  rm -r "$scratch/arm64" "$scratch/x86_64"
}
universal "$prefix/share/doc/zvisp/examples/plugin" PlugIn/libIsp.dylib
universal "$here/template" libSignVerify.dylib

PYTHONPATH=$root/tests/macos PYTHONDONTWRITEBYTECODE=1 python3 - "$scratch/universal" "$scratch" <<'PYTHON'
import pathlib
import sys

from check_binaries import SIGN_EXPORTS, SYSTEM, file_faults

directory, scratch = map(pathlib.Path, sys.argv[1:])
REQUIRED = {"IspFlash", "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash", "SetUIFunction",
            "DumpFlash"}
faults = []
for name, exports in (("libIsp.dylib", REQUIRED), ("libSignVerify.dylib", SIGN_EXPORTS)):
    expected = {"_" + call for call in exports}
    faults += file_faults(directory / name, name, {SYSTEM}, expected, scratch)
print("\n".join(faults))
sys.exit(bool(faults))
PYTHON
