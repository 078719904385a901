#!/bin/sh
# SPDX-License-Identifier: MIT
# lint.sh PAGE: mandoc finds nothing to say about the page.
if ! command -v mandoc >/dev/null; then
  echo "mandoc is not installed"
  [ -z "${CI:-}" ] || exit 1
  exit 77
fi
said=$(mandoc -Tlint -Wstyle "$1")
[ -z "$said" ] || { echo "$said"; exit 1; }
