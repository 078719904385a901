#!/bin/sh
# SPDX-License-Identifier: MIT
# readme_plugin_test.sh TOOL SOURCE-DIR: takes the smallest plug-in out of simulator/README.md,
# compiles it by the command there, and runs it. Every call answers as the text says.
set -eu

tool=$1
root=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
fail() { echo "readme_plugin_test: $*"; exit 1; }

section=$(sed -n '/^## Writing a plug-in of your own$/,$p' "$root/simulator/README.md")
# block LANGUAGE: the first block of that language.
block() {
  printf '%s\n' "$section" | awk -v open="\`\`\`$1" \
    '$0 == open { inside = 1; next } inside && /^```$/ { exit } inside'
}
block c >my_plugin.c
compile=$(block console | sed -n 's/^\$ //p')
case $compile in
  "cc -std=c99 "*) ;;
  *) fail "the README has another command: $compile" ;;
esac

mkdir PlugIn
ln -s "$root/src" src
cp "$tool" zvisp
eval "$compile -Wall -Wextra -pedantic -Werror" || fail "the snippet does not compile"

# answers CODE STATUS WORDS...
answers() {
  code=$1 expected=$2 status=0
  shift 2
  ./zvisp "$@" --comm 1 >said || status=$?
  grep -q "Error Code: $code\$" said || fail "$*, not $code: $(cat said)"
  [ "$status" -eq "$expected" ] || fail "$* ends with status $status"
}
echo firmware >fw.bin
: >empty.bin
answers 0x104 4 --isp --fw fw.bin
answers 0x101 1 --isp --fw empty.bin
answers 0x102 2 --dumpflash --dumpaddr 0 --dumplen 1
answers 0x105 5 --recordver --cmd
answers 0x6 6 --enterispmode
echo "the smallest plug-in of the README was compiled and called"
