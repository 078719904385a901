#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fails on an include in src/ that points to a folder on the right of its own.
#
#   scripts/check-layers.sh [SOURCE_DIR]
set -euo pipefail
cd "${1:-$(dirname "$0")/../src}"

folders=(base plugin settings firmware cmdline app)
rank_of() {
  local i
  for i in "${!folders[@]}"; do
    if [ "${folders[i]}" = "$1" ]; then echo "$i"; return; fi
  done
  echo "unknown folder: $1" >&2
  exit 1
}

failures=0
while IFS=: read -r file _ line; do
  from=$(rank_of "${file%%/*}")
  included=${line#*\"}
  to=$(rank_of "${included%%/*}")
  if [ "$to" -gt "$from" ]; then
    echo "src/$file includes ${included%\"*}, which lies to its right" >&2
    failures=$((failures + 1))
  fi
done < <(grep -rn --include='*.h' --include='*.cpp' --include='*.inc' '^ *#include "' -- */)

[ "$failures" -eq 0 ] && echo "All includes point to the left."
