#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main job, from a fresh checkout: builds the tool, programs firmware into the simulated
# display, dumps the flash back through the tool and compares.
#
#   scripts/demo.sh          a generated image of five banks in two files
#   scripts/demo.sh FILE     that file
set -euo pipefail

bank_bytes=65536
caller_directory=$PWD
cd "$(dirname "$0")/.."
if [ $# -gt 0 ]; then
  case $1 in
    /*) given=$1 ;;
    *)  given=$caller_directory/$1 ;;
  esac
  [ -r "$given" ] || { echo "demo: cannot read $given" >&2; exit 1; }
fi

scripts/dependencies.sh build
echo "Building ..."
[ -f build/CMakeCache.txt ] || cmake -S . -B build -G Ninja -DZVISP_BUILD_TESTS=OFF >/dev/null
cmake --build build --target zvisp isp_simulator >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZVISP_SIM_DIR=$work/displays

size_of() { wc -c <"$1" | tr -d ' '; }

# Runs the tool and shows what it printed.
run() {
  local status=0
  echo "\$ zvisp $*"
  PATH=build/bin:$PATH examples/flash-one.sh "$work/output" "$@" || status=$?
  cat "$work/output"
  [ "$status" -eq 0 ] || { echo "demo: the tool did not succeed" >&2; exit 1; }
}

# The file as flash holds it: whole banks, what is left of the last one erased.
append_banks() {
  local bytes padding
  bytes=$(size_of "$1")
  padding=$(((bank_bytes - bytes % bank_bytes) % bank_bytes))
  cat "$1"
  head -c "$padding" /dev/zero | tr '\000' '\377'
}

if [ $# -gt 0 ]; then
  append_banks "$given" >"$work/expected"
  run --isp --fw1 "$given" --bank1 0 --comm 1
else
  head -c $((3 * bank_bytes)) /dev/urandom >"$work/main.bin"
  head -c 100000 /dev/urandom >"$work/panel.bin"
  { append_banks "$work/main.bin"; append_banks "$work/panel.bin"; } >"$work/expected"
  run --isp --fw1 "$work/main.bin" --bank1 0 --fw2 "$work/panel.bin" --bank2 3 --comm 1
fi
length=$(size_of "$work/expected")
run --dumpflash --dumpaddr 0 --dumplen "$length" --dumpname "$work/dump.bin" --comm 1

cmp "$work/expected" "$work/dump.bin"
echo "The flash holds the firmware byte for byte: $((length / bank_bytes)) banks, $length bytes."
