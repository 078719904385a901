#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fails on an include that points the wrong way between the folders of src/, simulator/ and line/.
#
#   scripts/check-layers.sh [ROOT]     ROOT is a checkout; without it, the one of this script
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# A row for each folder: what its files may include, apart from itself. A row may name a folder
# whole or one header of it.
all_of_src='base plugin settings firmware cmdline app'
line_below_command='line/event line/journal line/job line/worker line/supervise line/plugin_check'
rules=(
  "src/base:"
  "src/plugin:     base"
  "src/settings:   base plugin"
  "src/firmware:   base plugin settings"
  "src/cmdline:    base plugin settings firmware"
  "src/app:        base plugin settings firmware cmdline"
  # A plug-in includes this one header, as a customer's does: another one brings constructors along
  # that only the tool has.
  "simulator/files:"
  "simulator/display: plugin/zvisp_plugin.h files"
  "simulator/signer:  plugin/zvisp_plugin.h files"
  "line/event:        $all_of_src"
  "line/journal:      $all_of_src line/event"
  "line/job:          $all_of_src line/event line/journal"
  "line/worker:       $all_of_src line/event line/journal line/job"
  "line/supervise:    $all_of_src line/event line/journal line/job line/worker"
  "line/plugin_check: $all_of_src line/event line/journal line/job line/worker line/supervise"
  "line/command:      $all_of_src $line_below_command"
)

# Prints what the files of a folder may include; fails for a folder that has no row.
allowed_in() {
  local rule
  for rule in "${rules[@]}"; do
    if [ "${rule%%:*}" = "$1" ]; then echo "${1##*/} $1 ${rule#*:}"; return; fi
  done
  return 1
}

# may_include HEADER NAME...: whether one of the names is the header or its folder.
may_include() {
  local header=$1 name
  shift
  for name in "$@"; do
    case $header in "$name" | "$name"/*) return 0 ;; esac
  done
  return 1
}

failures=0
refuse() {
  echo "$1" >&2
  failures=$((failures + 1))
}

for folder in src/*/ simulator/*/ line/*/; do
  folder=${folder%/}
  includes=$(grep -rn --include='*.h' --include='*.cpp' --include='*.c' --include='*.inc' \
    '^ *# *include *"' "$folder" 2>/dev/null) || continue
  row=$(allowed_in "$folder") || { refuse "scripts/check-layers.sh has no row for $folder"; continue; }
  read -ra allowed <<<"$row"
  while IFS=: read -r file _ line; do
    header=${line#*\"}
    header=${header%\"*}
    may_include "$header" "${allowed[@]}" ||
      refuse "$file includes $header, but $folder may include only: ${allowed[*]}"
  done <<<"$includes"
done

if [ "$failures" -gt 0 ]; then exit 1; fi
echo "All includes point to the left."
