#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main job, from a fresh checkout: builds the tool, programs the simulated display and compares.
set -euo pipefail

usage() {
  cat <<'END'
./demo [FILE]

Builds zvisp and the simulated display in build/, programs firmware into the display, reads the
flash back through the tool and compares. No hardware is touched. Without FILE, the firmware is a
generated image of five banks in two files.

The first run installs the compiler, CMake and Ninja when they are missing and builds for a minute
or two; after that it takes seconds.
END
}

fail() {
  echo "demo: $1" >&2
  exit 1
}

bank_bytes=65536
caller_directory=$PWD
cd "$(dirname "$0")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

given=
case ${1:-} in
  '') ;;
  -h | --help) usage; exit ;;
  -*) usage >&2; fail "no option $1" ;;
  /*) given=$1 ;;
  *)  given=$caller_directory/$1 ;;
esac
if [ $# -gt 1 ]; then usage >&2; fail "one file at most"; fi
if [ -n "$given" ]; then
  [ -e "$given" ] || fail "there is no file $given"
  [ -f "$given" ] || fail "$given is not an ordinary file; name a firmware file"
  [ -r "$given" ] || fail "the file $given may not be read"
  [ -s "$given" ] || fail "the file $given is empty"
fi

scripts/dependencies.sh build
quietly "Configuring, half a minute the first time" configure build
quietly "Building the tool and the simulated display, a minute or two the first time" \
  cmake --build build --parallel "$(processors)" --target zvisp isp_simulator

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZVISP_SIM_DIR=$work/displays

size_of() { wc -c <"$1" | tr -d ' '; }

# Runs the tool and shows what it prints. It writes to a file: a pipe could end a programming run.
run() {
  local status=0
  echo "\$ zvisp $*"
  build/bin/zvisp "$@" >"$work/output" || status=$?
  cat "$work/output"
  succeeded "$status" "$work/output" || fail "the tool did not succeed"
}

# The file as flash holds it: whole banks, what is left of the last one erased.
append_banks() {
  local bytes padding
  bytes=$(size_of "$1")
  padding=$(((bank_bytes - bytes % bank_bytes) % bank_bytes))
  cat "$1"
  head -c "$padding" /dev/zero | tr '\000' '\377'
}

if [ -n "$given" ]; then
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
