#!/bin/sh
# SPDX-License-Identifier: MIT
# run.sh ROOT: every include of the checkout points to the left, and the check refuses each kind
# of include that does not.
set -eu
root=$1
check=$root/scripts/check-layers.sh
"$check" "$root"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# tree FILE HEADER: a checkout of one file that includes one header.
tree() {
  rm -rf "$scratch/tree"
  mkdir -p "$scratch/tree/src" "$scratch/tree/$(dirname "$1")"
  echo "#include \"$2\"" >"$scratch/tree/$1"
}

accepted() {
  tree "$@"
  "$check" "$scratch/tree" >/dev/null || { echo "refused: $1 with $2"; exit 1; }
}

refused() {
  tree "$@"
  if "$check" "$scratch/tree" >/dev/null 2>"$scratch/said"; then
    echo "accepted: $1 with $2"
    exit 1
  fi
  grep -q "$(dirname "$1")" "$scratch/said" || { echo "wrong reason:"; cat "$scratch/said"; exit 1; }
}

accepted src/base/path.cpp base/path.h
accepted src/app/main.cpp cmdline/option_scanner.h
accepted simulator/display/host.cpp plugin/zvisp_plugin.h
accepted line/worker/worker.cpp app/execute_process.h
refused src/base/path.cpp plugin/comm_plugin.h
refused src/settings/profile.h firmware/bank_map.h
refused src/plugin/comm_operations.inc app/banner.h
refused src/app/main.cpp line/event/event.h
refused simulator/display/host.cpp plugin/comm_plugin.h
refused simulator/display/host.cpp plugin/command_setting.h
refused simulator/signer/keys.h base/path.h
refused simulator/signer/keys.cpp display/host.h
refused line/event/event.cpp journal/journal.h
refused src/unheard_of/file.cpp base/path.h
