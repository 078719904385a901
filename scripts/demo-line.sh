#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# demo-line.sh DIRECTORY: works through examples/line with the tools in DIRECTORY, and explains what
# is seen. The steps are those of the example's README.
set -euo pipefail

bin=$(cd "$1" && pwd)
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PATH=$bin:$PATH
export ZVISP_SIM_DIR=$work/line/displays
# Simulated displays are at no interface of this host.
export ZVISP_LINE_LOCK_DIR=$work/locks

fail() {
  echo "demo: $1" >&2
  exit 1
}

explain() {
  echo
  fold -s -w 80 <<<"$*" | sed 's/ *$//; s/^/# /'
}

# show STATUS WORDS...: shows a command and runs it; the status must be this one.
show() {
  local wanted=$1 status=0
  shift
  echo "\$ $*"
  "$@" || status=$?
  echo "[exit status $status]"
  [ "$status" -eq "$wanted" ] || fail "the exit status should have been $wanted"
}

cp -r "$root/examples/line" "$work/line"
cd "$work/line"

explain "Four displays on a line. The job line.toml names the firmware with its SHA-256, three steps" \
  "and the places A1 to A4. First the firmware is made, and the job is judged; no display is touched."
seq 40000 >panel.bin
show 0 zvisp-line batch line.toml --check

explain "Now the batch. A1 is the first article: the others start when it has passed. The cable of" \
  "A3 comes loose in the middle of its firmware; its neighbours do not notice."
show 5 zvisp-line batch line.toml --data record --unit A1=ZP00000001 --unit A2=ZP00000002 \
  --unit A3=ZP00000003 --unit A4=ZP00000004

explain "Exit status 5: at least one display may be half-written. A3 is \"uncertain\", because the" \
  "call that writes was begun and failed. The record still knows it tomorrow; doctor names it."
show 5 zvisp-line journal doctor --data record

explain "The hook to-mes has got one line of JSON for each display. For A3:"
show 0 grep ZP00000003 results.jsonl

explain "The cable is put back: the fault of the simulated display is removed. Only A3 is tried again;" \
  "A1, A2 and A4 have passed, and \"once\" would refuse them."
show 0 rm displays/display-03.faults
show 0 zvisp-line batch line.toml --data record --skip A1 --skip A2 --skip A4 --unit A3=ZP00000003

explain "A display that passed is refused before anything starts, so that none is done twice:"
show 2 zvisp-line batch line.toml --data record --skip A1 --skip A2 --skip A4 --unit A3=ZP00000003

explain "Doctor has nothing to name any more, and the flash of A3 holds the firmware byte for byte:"
show 0 zvisp-line journal doctor --data record
show 0 cmp -n 228894 panel.bin displays/display-03.flash
