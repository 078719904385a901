#!/bin/bash
# SPDX-License-Identifier: MIT
# Times a whole run of a prefix search next to "ls -f | grep" on the same directory, best of seven.
#
#   scripts/bench.sh search [EXECUTABLE]
set -euo pipefail

tool=$(cd "$(dirname "${1:-build/bin/zvisp}")" && pwd)/$(basename "${1:-build/bin/zvisp}")
scratch=$(mktemp -d "${TMPDIR:-/tmp}/zvisp-bench.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

# Nothing matches, so the run ends right after the search.
printf '[ISP_Fw]\nstrFwPrefix=none\n' > "$scratch/search.ini"

search() { "$tool" --isp --settingfile "$scratch/search.ini" --searchfw prefix; }
# shellcheck disable=SC2010  # this pipe is what the search is compared with
list() { ls -f | grep '^none.*\.bin$' || true; }

# Seconds of the fastest of seven runs.
best() {
  local TIMEFORMAT=%3R
  for _ in 1 2 3 4 5 6 7; do { time "$1" > /dev/null; } 2>&1; done | sort -n | head -n 1
}

printf '%10s %12s %16s\n' files 'prefix (s)' 'ls -f | grep (s)'
for files in 1000 10000 100000; do
  mkdir "$scratch/$files"
  cd "$scratch/$files"
  seq -f 'fw_%.0f.bin' 1 "$files" | xargs touch only.bin
  [ "$(search | head -n 1)" = 'find 0 match fw base on prefix none, fail!' ]
  printf '%10d %12s %16s\n' "$files" "$(best search)" "$(best list)"
done
