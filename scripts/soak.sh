#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Kills zvisp-line at random moments, and swaps firmware under its hands; fails when the record or
# the flash of a simulated display is then wrong.
#
#   scripts/soak.sh [--kills N] [--swaps N] [BUILD_DIR]      1000, 500 and build by default
#
# Kills: SIGKILL to the parent, the worker, or both in the middle of programming. The display's own
# journal is the referee: every display that is half-written is named by `journal doctor`, and one
# whose worker outlived its parent is whole, or was never touched, and is not named.
# Swaps: while displays are programmed, the firmware is renamed over, written anew in place, and
# renamed over with a signature in force. The flash holds one version of it, whole, or nothing; with
# a signature, the signed one.
set -euo pipefail
cd "$(dirname "$0")/.."

kills=1000
swaps=500
build=build
while [ $# -gt 0 ]; do
  case $1 in
    --kills) kills=$2; shift 2 ;;
    --swaps) swaps=$2; shift 2 ;;
    *) build=$1; shift ;;
  esac
done
for tool in flock pgrep; do
  command -v "$tool" >/dev/null || { echo "soak: needs $tool" >&2; exit 77; }
done
line=$(realpath "$build/bin/zvisp-line")
zvisp=$(realpath "$build/bin/zvisp")
keys=$PWD/tests/data/signer

scratch=$(mktemp -d)
swapper=
clean_up() {
  if [ -n "$swapper" ]; then kill "$swapper" 2>/dev/null || true; fi
  rm -rf "$scratch"
}
trap clean_up EXIT
cd "$scratch"
export ZVISP_LINE_LOCK_DIR=$scratch/locks
data=$scratch/data
mkdir locks

fail() {
  echo "soak: $*" >&2
  exit 1
}

# Sleeps up to so many milliseconds.
sleep_up_to() {
  sleep "$(printf '0.%03d' $((RANDOM % $1)))"
}

display_of() {
  export ZVISP_SIM_DIR=$scratch/display-$1
  mkdir "$ZVISP_SIM_DIR"
  echo 'slow ms=15' >"$ZVISP_SIM_DIR/display-01.faults"
}

# What the display itself says: untouched, half or whole.
referee() {
  local journal=$ZVISP_SIM_DIR/display-01.journal
  if ! grep -qs '^erase' "$journal"; then
    echo untouched
  elif grep -q '^end .* code=0x0$' "$journal"; then
    echo whole
  else
    echo half
  fi
}

is_named() {
  "$line" journal doctor --json --data "$data" >findings || [ $? -eq 5 ] || fail "doctor failed"
  grep -q "\"unit\":\"$1\"" findings
}

declare -A seen
kill_round() {
  local unit=K$1 victim parent worker state named
  victim=$((RANDOM % 3))
  display_of "$1"
  "$line" run --quiet --data "$data" --unit "$unit" -- --isp --fw "$scratch/fw.bin" --comm 1 \
    2>/dev/null &
  parent=$!
  sleep_up_to 200
  worker=$(pgrep -P "$parent" || true)
  # The worker first, or it would be a moment too late.
  if [ "$victim" != 0 ] && [ -n "$worker" ]; then kill -KILL "$worker" 2>/dev/null || true; fi
  if [ "$victim" != 1 ]; then kill -KILL "$parent" 2>/dev/null || true; fi
  wait "$parent" 2>/dev/null || true
  # An orphan holds the lock until its end.
  if [ -e locks/comm-1 ]; then flock -w 60 locks/comm-1 true || fail "$unit: an orphan hangs"; fi
  state=$(referee)
  named=clear
  if is_named "$unit"; then named=named; fi
  if [ "$state" = half ] && [ "$named" = clear ]; then
    fail "$unit is half-written, and doctor does not name it"
  fi
  if [ "$victim" = 0 ] && { [ "$named" = named ] || [ "$state" = half ]; }; then
    fail "$unit: its worker finished ($state), and doctor says $named"
  fi
  local victims=(parent worker both) key
  key="${victims[victim]} killed: display $state, $named"
  seen[$key]=$((${seen[$key]:-0} + 1))
  rm -rf "$ZVISP_SIM_DIR"
}

# A file of so many banks of one character.
firmware() {
  head -c $(($2 * 65536)) /dev/zero | tr '\0' "$1"
}

# swap_round NUMBER WORDS...: programs a display while the swapper is at work.
swap_round() {
  local number=$1 status=0
  shift
  display_of "$number"
  rm -f "$ZVISP_SIM_DIR/display-01.faults"
  "$line" run --quiet --data "$data" --unit "S$number" -- --isp --comm 1 "$@" 2>said || status=$?
  local flash=$ZVISP_SIM_DIR/display-01.flash
  if [ "$status" = 0 ]; then
    cmp -s "$flash" a.bin || cmp -s "$flash" b.bin || fail "S$number: the flash is a mixture"
  else
    [ ! -s "$flash" ] || fail "S$number: refused ($status), and the display is not untouched"
  fi
  key="status $status"
  if [ "$status" = 0 ]; then
    if cmp -s "$flash" a.bin; then key="$key, version a"; else key="$key, version b"; fi
  fi
  seen[$swap: $key]=$((${seen[$swap: $key]:-0} + 1))
  rm -rf "$ZVISP_SIM_DIR"
}

start_swapper() {
  swap=$1
  case $swap in
    renamed)
      while :; do
        cp a.bin "next-$BASHPID" && mv "next-$BASHPID" fw.bin
        cp b.bin "next-$BASHPID" && mv "next-$BASHPID" fw.bin
      done & ;;
    rewritten)
      while :; do
        dd if=a.bin of=fw.bin conv=notrunc bs=64k status=none
        sleep 0.02
        dd if=b.bin of=fw.bin conv=notrunc bs=64k status=none
        sleep 0.02
      done & ;;
  esac
  swapper=$!
}

stop_swapper() {
  kill "$swapper" 2>/dev/null || true
  wait "$swapper" 2>/dev/null || true
  swapper=
}

firmware a 8 >a.bin
firmware b 8 >b.bin
cp a.bin fw.bin
for ((i = 1; i <= kills; ++i)); do kill_round "$i"; done

cp a.bin fw.bin
"$zvisp" --sign --fw "$scratch/fw.bin" --signfile "$scratch/fw.sig" --sw --dsmode 3 \
  --skfile "$keys/sign.key" --vkfile "$keys/sign.pub" >signing
tail -c 16 signing | grep -q Success || fail "the firmware could not be signed"
for ((i = 1; i <= swaps; ++i)); do
  case $((i % 3)) in
    0) start_swapper renamed; swap_round "$i" --fw "$scratch/fw.bin" ;;
    1) start_swapper rewritten; swap_round "$i" --fw "$scratch/fw.bin" ;;
    2) start_swapper renamed; swap='renamed, signed'
       swap_round "$i" --fw "$scratch/fw.bin" --sw --dsmode 3 --signfile "$scratch/fw.sig" \
         --vkfile "$keys/sign.pub" ;;
  esac
  stop_swapper
done
if [ "${seen[renamed, signed: status 0, version b]:-0}" != 0 ]; then
  fail "a version without a signature was programmed"
fi
for key in "${!seen[@]}"; do echo "${seen[$key]} $key"; done | sort -k2
echo "soak: $kills kills, $swaps swaps: the record and every flash are right"
