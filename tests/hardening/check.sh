#!/bin/sh
# SPDX-License-Identifier: MIT
# Fails unless every ELF file given carries the protection that we ship with; names what is missing.
#
#   check.sh FILE...
set -eu
export LC_ALL=C
failures=0

# expect FILE WHAT TEXT PATTERN, and reject for what must not be there
complain() {
  echo "$1: $2" >&2
  failures=$((failures + 1))
}
expect() { echo "$3" | grep -Eq "$4" || complain "$1" "$2"; }
reject() { if echo "$3" | grep -Eq "$4"; then complain "$1" "$2"; fi; }

for file in "$@"; do
  header=$(readelf -hW "$file")
  segments=$(readelf -lW "$file")
  dynamic=$(readelf -dW "$file")
  symbols=$(readelf -W --dyn-syms "$file")
  expect "$file" 'not position-independent' "$header" 'Type: +DYN'
  expect "$file" 'no RELRO' "$segments" 'GNU_RELRO'
  expect "$file" 'no immediate binding' "$dynamic" 'BIND_NOW|Flags:.* NOW'
  expect "$file" 'no word about the stack' "$segments" 'GNU_STACK'
  reject "$file" 'executable stack' "$segments" 'GNU_STACK.* RWE '
  expect "$file" 'no stack protector' "$symbols" ' __stack_chk_fail@'
  expect "$file" 'no fortified calls' "$symbols" ' __(f?printf|v?sn?printf|vswprintf|mem[a-z]+|str[a-z]+|read|realpath)_chk@'
  reject "$file" 'search path for libraries' "$dynamic" '\((RPATH|RUNPATH)\)'
done
[ "$failures" -eq 0 ] || exit 1
echo "Hardened: $*"
