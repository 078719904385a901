#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Signs and verifies 1 MiB and 16 MiB with the tool and its reference signer, and next to it with
# "openssl pkeyutl -rawin", which does the same Ed25519 work. The programs take turns; the table has
# the medians in milliseconds, wall clock / processor: on a busy machine only the second says much.
#
#   scripts/bench.sh signing [EXECUTABLE [ROUNDS]]
set -euo pipefail

tool=$(realpath "${1:-build/bin/zvisp}")
rounds=${2:-11}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

openssl genpkey -algorithm ed25519 -out sign.key
openssl pkey -in sign.key -pubout -out verify.pub

# Runs a command and adds its wall-clock and processor times to a file. Its output must hold a text,
# or, without a text, be empty.
TIMEFORMAT='%R %U %S'
timed() {
  local file=$1 expected=$2
  shift 2
  { time "$@" > output 2>&1; } 2>> "$file"
  if [ -n "$expected" ]; then grep -q "$expected" output; else [ ! -s output ]; fi
}

# The medians of both in milliseconds: wall clock / processor.
medians() {
  local wall processor
  wall=$(awk '{ print $1 * 1000 }' "$1" | sort -n | sed -n "$(((rounds + 1) / 2))p")
  processor=$(awk '{ print ($2 + $3) * 1000 }' "$1" | sort -n | sed -n "$(((rounds + 1) / 2))p")
  echo "$wall / $processor"
}

printf '%-7s  %14s  %14s  %14s  %14s\n' size 'zvisp sign' 'openssl sign' 'zvisp verify' 'openssl verify'
for mib in 1 16; do
  head -c $((mib * 1048576)) /dev/urandom > fw.bin
  rm -f ./*.times
  for ((round = 0; round < rounds; ++round)); do
    timed zs.times Success "$tool" --sign --sw --dsmode 3 --fw fw.bin --skfile sign.key
    timed os.times '' openssl pkeyutl -sign -rawin -inkey sign.key -in fw.bin -out fw.raw
    timed zv.times Success "$tool" --verify --sw --dsmode 3 \
      --fw fw.bin --signfile fw.bin.sig --vkfile verify.pub
    timed ov.times Verified openssl pkeyutl -verify -rawin \
      -pubin -inkey verify.pub -in fw.bin -sigfile fw.raw
  done
  printf '%3d MiB  %14s  %14s  %14s  %14s\n' "$mib" "$(medians zs.times)" "$(medians os.times)" \
    "$(medians zv.times)" "$(medians ov.times)"
done
