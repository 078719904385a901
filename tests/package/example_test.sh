#!/bin/sh
# SPDX-License-Identifier: MIT
# example_test.sh BIN PLUGINS EXAMPLE: works through the README of examples/line, with the
# zvisp-line of one directory, the plug-ins of another and a copy of the example. It needs nothing
# but a shell and the basic tools.
set -eu

bin=$1
plugins=$2
example=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "example_test: $*"; exit 1; }

# Simulated displays are at no interface of this host.
export ZVISP_LINE_LOCK_DIR="$work/locks"
PATH=$bin:$PATH
cp -r "$example" "$work/line"
cd "$work/line"

# Commands are after "$ ", and those that continue end in a backslash. Each is followed by its
# status; the copy has been made above.
# shellcheck disable=SC2016  # sed has no variables, and the shell below has them
{
  sed -n '/^```console$/,/^```$/{s/^\$ \(.*\)/\1/p; s/^    //p;}' README.md |
    sed -e '/^cp -r /d' -e "s|=/usr/libexec/zvisp-simulator|=$plugins|" \
      -e '/\\$/!s/$/ || status=$?; echo "status ${status:-0}"; status=/'
} >"$work/commands"
grep -q 'zvisp-line batch' "$work/commands" || fail "the README has no commands"
sh "$work/commands" >"$work/said" 2>&1 || fail "status $?: $(cat "$work/said")"

statuses=$(sed -n 's/^status //p' "$work/said" | tr '\n' ' ')
[ "$statuses" = '0 0 0 5 5 0 0 0 ' ] || fail "statuses $statuses: $(cat "$work/said")"
said() { grep -q "$1" "$work/said" || fail "it did not say $1: $(cat "$work/said")"; }
for place in 1 2 4; do
  said "^A$place  ZP0000000$place  PASS  identical"
done
said '^A3  ZP00000003  FAIL  uncertain'
said '^A3  ZP00000003  PASS  identical'
for display in 1 2 3 4; do
  cmp -n 228894 panel.bin "displays/display-0$display.flash"
done

# The hooks were asked, and got every result.
[ "$(grep -c '"type":"unit_result"' results.jsonl)" = 5 ] ||
  fail "to-mes got $(cat results.jsonl)"
status=0
zvisp-line batch line.toml --plugins "$plugins" --data record --skip A2 --skip A3 --skip A4 \
  --unit A1=ZP00000009 >"$work/said" 2>&1 || status=$?
[ "$status" = 2 ] || fail "a display that is not in order.txt: status $status"
said 'ZP00000009 is not in order.txt'
echo "the example programs its four displays, the faulty one with the second try"
