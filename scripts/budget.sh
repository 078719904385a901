#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Counts the instructions of three whole runs of the optimised tool, and fails when one takes over
# 3 % more than is stored. Instructions, because they stay the same on a busy machine.
#
#   scripts/budget.sh [--update] [BUILD_DIR]     stores the counts, or compares with them
#   scripts/budget.sh --try FILE [BUILD_DIR]     compares with another file of counts
#   scripts/budget.sh --machine                  prints what the counts belong to
#
# Counts belong to a compiler and a C library. Where nothing is stored for those of this machine,
# it says so and ends with 77: each compiler has its own counts, and none is wrong.
set -euo pipefail
export LC_ALL=C
root=$(cd "$(dirname "$0")/.." && pwd)
stored=$root/tests/budget/counts.txt
mode=compare
case ${1:-} in
  --update) mode=update; shift ;;
  --try)    stored=$2; shift 2 ;;
  --machine) mode=machine ;;
esac

skip() {
  echo "budget: skipped, $1"
  exit 77
}

for program in valgrind gcc; do
  if ! command -v "$program" >/dev/null; then
    # Where CI is set, the tools have to be there.
    [ -z "${CI:-}" ] || { echo "budget: $program is not installed" >&2; exit 1; }
    skip "$program is not installed"
  fi
done
machine="gcc-$(gcc -dumpfullversion)/glibc-$(getconf GNU_LIBC_VERSION | cut -d' ' -f2)/$(uname -m)"
if [ "$mode" = machine ]; then echo "$machine"; exit; fi
bin=$(cd "${1:-$root/build}/bin" && pwd)

# The length of every path counts, so the installation lies in a place of fixed length.
work=$(mktemp -d /tmp/zvisp-budget.XXXXXX)
trap 'rm -rf "$work"' EXIT
for plugin in simulated returning; do
  mkdir -p "$work/$plugin/PlugIn"
  cp "$bin/zvisp" "$work/$plugin/"
done
cp "$bin/PlugIn/libIsp.dylib" "$work/simulated/PlugIn/"
gcc -O2 -shared -fPIC -I"$root/src" "$root/tests/budget/returning_plugin.c" \
  -o "$work/returning/PlugIn/libIsp.dylib"
# One bank that is neither empty nor the same everywhere.
seq -w 0 9999999 | head -c 65536 >"$work/one_bank.bin" || true

# The processor's own variants of memcpy and the like are switched off: each machine has others.
plain=glibc.cpu.hwcaps=-AVX2,-AVX512F,-AVX512VL,-EVEX,-ERMS,-FSRM,-AVX2_Usable,-SSE4_2,-SSSE3

# count EXPECTED_LINE PLUGIN ARGUMENT...: prints the instructions of that run.
count() {
  local expected=$1 plugin=$2
  shift 2
  (cd "$work" && env -i LC_ALL=C ZVISP_SIM_DIR="$work/displays" GLIBC_TUNABLES="$plain" \
    "$(command -v valgrind)" --tool=callgrind --callgrind-out-file=/dev/null \
    "$work/$plugin/zvisp" "$@" >"$work/out" 2>"$work/err") || true
  grep -q "$expected" "$work/out" ||
    { echo "budget: the run of $plugin with $* went wrong:" >&2; cat "$work/out" "$work/err" >&2; exit 1; }
  sed -n 's/.*Collected : \([0-9]*\).*/\1/p' "$work/err"
}

rejected=$(count 'argument is illegal' returning --isp --comm 99)
returning=$(count Success returning --isp --fw1 one_bank.bin --bank1 0 --comm 1)
simulated=$(count Success simulated --isp --fw1 one_bank.bin --bank1 0 --comm 1)
measured="rejected_line $rejected
returning_plugin $returning
one_bank_simulated $simulated"

if [ "$mode" = update ]; then
  others=$(grep -v "^$machine " "$stored" 2>/dev/null || true)
  {
    [ -z "$others" ] || echo "$others"
    while read -r line; do echo "$machine $line"; done <<<"$measured"
  } >"$stored"
fi
grep -q "^$machine " "$stored" || skip "nothing stored for $machine; --update stores it"

failures=0
printf '%-20s %12s %12s %8s\n' run stored now change
while read -r name now; do
  before=$(awk -v key="$machine" -v name="$name" '$1 == key && $2 == name { print $3 }' "$stored")
  change=$(awk -v now="$now" -v before="$before" 'BEGIN { print (now / before - 1) * 100 }')
  printf '%-20s %12d %12d %+6.1f %%\n' "$name" "$before" "$now" "$change"
  if [ $((now * 100)) -gt $((before * 103)) ]; then
    echo "budget: $name grew by more than 3 %" >&2
    failures=1
  fi
done <<<"$measured"
exit "$failures"
