#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks what was built, and that the check refuses a binary that lacks one protection at a time.
#
#   run.sh CHECK C_COMPILER FILE...
set -eu
check=$1
compiler=$2
shift 2
sh "$check" "$@"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cat >"$scratch/victim.c" <<'SOURCE'
#include <stdio.h>
#include <string.h>
int main(int argc, char** argv) {
  char text[16];
  strcpy(text, argv[argc - 1]);
  return printf("%s\n", text);
}
SOURCE
good="-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fPIE -pie
      -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack"

build() {
  # shellcheck disable=SC2086  # the flags are words
  "$compiler" $good "$@" -o "$scratch/victim" "$scratch/victim.c"
}

build
sh "$check" "$scratch/victim"

# expect_refusal COMPLAINT WHAT: of the victim as it is.
expect_refusal() {
  if sh "$check" "$scratch/victim" 2>"$scratch/said"; then
    echo "accepted in spite of $2" >&2
    exit 1
  fi
  [ "$(cat "$scratch/said")" = "$scratch/victim: $1" ] ||
    { echo "wrong complaint about $2:" >&2; cat "$scratch/said" >&2; exit 1; }
}

# refused COMPLAINT FLAG...: the last flag wins over the good one.
refused() {
  complaint=$1
  shift
  build "$@"
  expect_refusal "$complaint" "$*"
}
refused 'not position-independent' -fno-pie -no-pie
refused 'no RELRO' -Wl,-z,norelro
refused 'no immediate binding' -Wl,-z,lazy
refused 'executable stack' -Wl,-z,execstack
refused 'no stack protector' -fno-stack-protector
refused 'no fortified calls' -U_FORTIFY_SOURCE
refused 'search path for libraries' -Wl,-rpath,/nowhere

# No flag of the linker leaves the stack's header out, so its type is wiped.
build
LC_ALL=C sed -i 's/\x51\xE5\x74\x64/\x00\x00\x00\x00/' "$scratch/victim"
expect_refusal 'no word about the stack' 'a wiped header'
