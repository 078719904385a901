#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the fuzzers and runs each for a while from the seeds.
#
#   scripts/fuzz-smoke.sh [seconds [target...]]
#
# Prints a line for each target: inputs run, branches reached, result. Ends with 1 when one broke,
# after naming the input that did it, and with 77 when the compiler is missing.
set -eu

seconds=${1:-8}
[ $# -gt 0 ] && shift
targets=${*:-scanner command_line profile user_defined text_data text signer}

# Full paths, because a target may work in a directory of its own.
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
if ! command -v clang++ >/dev/null; then
  echo "fuzz-smoke: skipped, clang++ is not installed"
  # Where CI is set, the tools have to be there.
  [ -z "${CI:-}" ] || exit 1
  exit 77
fi
cmake --preset fuzz >/dev/null
ninja -C build/fuzz fuzzers >/dev/null

# Most targets make a file of each input; in memory that is many times faster.
if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
findings=$root/build/fuzz/findings
mkdir -p "$findings"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# run TARGET: new inputs go to the scratch directory, so that the seeds stay as they are.
run() {
  mkdir "$scratch/$1"
  "build/fuzz/fuzz/fuzz_$1" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
    -max_len=4096 -close_fd_mask=3 -print_final_stats=1 -dict="$root/fuzz/dictionaries/$1.dict" \
    -artifact_prefix="$findings/$1-" "$scratch/$1" "$root/fuzz/corpus/$1" >"$scratch/$1.log" 2>&1
}

status=0
for target in $targets; do
  result=ok
  run "$target" || result=BROKEN
  inputs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$scratch/$target.log")
  branches=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$scratch/$target.log" | tail -n 1)
  printf '%-14s %9s inputs %6s branches  %s\n' "$target" "${inputs:-?}" "${branches:-?}" "$result"
  if [ "$result" = BROKEN ]; then
    tail -n 40 "$scratch/$target.log"
    status=1
  fi
done
exit $status
