#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the fuzzers twice and runs each for a while from the seeds.
#
#   scripts/fuzz-smoke.sh [seconds [target...]]
#
# First without sanitizers, which is many times faster, for the promises. What that finds to be of
# interest then runs with the sanitizers, and continues to be changed for half the time.
#
# Prints a line for each target and build: inputs run, inputs a second, branches reached, result.
# Ends with 1 when one broke, after naming the input that did it, and with 77 when the compiler is
# missing.
set -eu

seconds=${1:-6}
[ $# -gt 0 ] && shift
targets=${*:-scanner command_line profile user_defined text_data text display signer verify}

# Full paths, because a target may work in a directory of its own.
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
if ! command -v clang++ >/dev/null; then
  echo "fuzz-smoke: skipped, clang++ is not installed"
  # Where CI is set, the tools have to be there.
  [ -z "${CI:-}" ] || exit 1
  exit 77
fi
for build in fuzz fuzz-asan; do
  cmake --preset $build >/dev/null
  ninja -C build/$build fuzzers >/dev/null
done

# Most targets make a file of each input; in memory that is many times faster.
if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
findings=$root/build/fuzz/findings
mkdir -p "$findings"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The longest input of a target: beyond the limits that it has to reach, and no longer, because
# short inputs run faster.
longest() {
  case $1 in
    scanner | text_data) echo 400 ;;
    text) echo 1200 ;;
    *) echo 4096 ;;
  esac
}

# Seeds of full length are there from the start, so the length is not raised step by step.
# run BUILD TARGET SECONDS: new inputs go to the scratch directory, so that the seeds stay as they
# are.
run() {
  mkdir -p "$scratch/$2"
  "build/$1/fuzz/fuzz_$2" -max_total_time="$3" -timeout=20 -rss_limit_mb=2048 \
    -max_len="$(longest "$2")" -len_control=0 -print_final_stats=1 \
    -dict="$root/fuzz/dictionaries/$2.dict" -artifact_prefix="$findings/$2-" \
    "$scratch/$2" "$root/fuzz/corpus/$2" >"$scratch/log" 2>&1
}

# report BUILD TARGET RESULT
report() {
  inputs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$scratch/log")
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$scratch/log")
  branches=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$scratch/log" | tail -n 1)
  printf '%-9s %-14s %9s inputs %6s a second %6s branches  %s\n' "$1" "$2" "${inputs:-?}" \
    "${rate:-?}" "${branches:-?}" "$3"
}

status=0
for target in $targets; do
  for build in fuzz fuzz-asan; do
    share=$seconds
    [ $build = fuzz ] || share=$(((seconds + 1) / 2))
    result=ok
    run $build "$target" "$share" || result=BROKEN
    report $build "$target" $result
    if [ $result = BROKEN ]; then
      tail -n 40 "$scratch/log"
      status=1
      break
    fi
  done
done
exit $status
