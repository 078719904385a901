#!/bin/sh
# SPDX-License-Identifier: MIT
# lint.sh PAGE...: mandoc finds nothing to say about the pages, but that those that they refer to
# are not installed.
if ! command -v mandoc >/dev/null; then
  echo "mandoc is not installed"
  [ -z "${CI:-}" ] || exit 1
  exit 77
fi
said=$(mandoc -Tlint -Wstyle "$@" | grep -v 'STYLE: referenced manual not found: Xr zvisp') || true
[ -z "$said" ] || { echo "$said"; exit 1; }
