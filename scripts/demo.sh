#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main job, from a fresh checkout: builds the tool, programs the simulated display and compares.
set -euo pipefail

usage() {
  cat <<'END'
./demo [FILE]
./demo line

Builds zvisp and the simulated display in build/, programs firmware into the display, reads the
flash back through the tool and compares. Then zvisp-line does the same in one go, on a second
display and with a record. No hardware is touched. Without FILE, the firmware is a generated image
of five banks in two files.

./demo line programs four displays at once with zvisp-line, one of them faulty, and explains what is
seen. (A file of that name is ./line.)

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
line_alone=no
case ${1:-} in
  '') ;;
  line) line_alone=yes ;;
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

scripts/dependencies.sh build line
quietly "Configuring, half a minute the first time" configure build
targets=(zvisp isp_simulator)
# Its libraries may be missing where nothing can be installed.
if cmake --build build --target help | grep -w zvisp-line >/dev/null; then
  targets+=(zvisp-line)
fi
quietly "Building the tool and the simulated display, a minute or two the first time" \
  cmake --build build --parallel "$(processors)" --target "${targets[@]}"

has_line=no
if [[ ${targets[*]} == *zvisp-line* ]]; then has_line=yes; fi
if [ "$line_alone" = yes ]; then
  [ "$has_line" = yes ] || fail "zvisp-line was left out: libraries that it needs are missing"
  exec scripts/demo-line.sh build/bin
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZVISP_SIM_DIR=$work/displays
# Simulated displays are at no interface of this host.
export ZVISP_LINE_LOCK_DIR=$work/locks

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
  firmware=(--fw1 "$given" --bank1 0)
else
  head -c $((3 * bank_bytes)) /dev/urandom >"$work/main.bin"
  head -c 100000 /dev/urandom >"$work/panel.bin"
  { append_banks "$work/main.bin"; append_banks "$work/panel.bin"; } >"$work/expected"
  firmware=(--fw1 "$work/main.bin" --bank1 0 --fw2 "$work/panel.bin" --bank2 3)
fi
run --isp "${firmware[@]}" --comm 1
length=$(size_of "$work/expected")
run --dumpflash --dumpaddr 0 --dumplen "$length" --dumpname "$work/dump.bin" --comm 1

cmp "$work/expected" "$work/dump.bin"
echo "The flash holds the firmware byte for byte: $((length / bank_bytes)) banks, $length bytes."

# The same with zvisp-line, on a display that is slow enough to watch the bar on a terminal.
if [ "$has_line" = no ]; then
  echo "zvisp-line was left out: libraries that it needs are missing."
  exit
fi
record=$work/record
echo 'slow ms=150' >"$ZVISP_SIM_DIR/display-02.faults"
echo "\$ zvisp-line run --readback --unit ZP1 --data $record -- --isp ${firmware[*]} --comm 2"
build/bin/zvisp-line run --readback --unit ZP1 --data "$record" -- --isp "${firmware[@]}" --comm 2 ||
  fail "zvisp-line ended with status $?"
echo "\$ zvisp-line journal show --data $record | grep -Ev 'progress|message'"
build/bin/zvisp-line journal show --data "$record" | grep -Ev 'progress|message'
