#!/bin/sh
# SPDX-License-Identifier: MIT
# line_test.sh PREFIX: zvisp-line is installed there with its manual page and completions, and
# programs a display of the installed simulator. It needs nothing but a shell and the basic tools.
set -eu

prefix=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "line_test: $*"; exit 1; }

for file in "$prefix"/share/man/man1/zvisp-line.1* \
    "$prefix"/share/doc/zvisp/event.schema.json \
    "$prefix"/share/bash-completion/completions/zvisp-line \
    "$prefix"/share/fish/vendor_completions.d/zvisp-line.fish "$prefix"/share/zsh/*/_zvisp-line; do
  [ -s "$file" ] || fail "$file was not installed"
done
[ "$(readlink "$prefix/bin/zvisp-line")" = ../libexec/zvisp/zvisp-line ] ||
  fail "bin/zvisp-line is not a link"
line=$prefix/bin/zvisp-line
version=$("$line" --version)
case $version in
  'zvisp-line '[0-9]*.[0-9]*.[0-9]*) ;;
  *) fail "--version printed $version" ;;
esac

export ZVISP_SIM_DIR="$work/displays"
head -c 196608 /dev/urandom >"$work/main.bin"
head -c 100000 /dev/urandom >"$work/panel.bin"
"$line" run --readback --unit P1 --wait 60 --data "$work/record" \
  --plugins "$prefix/libexec/zvisp-simulator" -- --isp --fw1 "$work/main.bin" --bank1 0 \
  --fw2 "$work/panel.bin" --bank2 3 --comm 1 >"$work/said" 2>&1 ||
  fail "status $?: $(cat "$work/said")"
grep -q '^comm-1  P1  PASS  identical$' "$work/said" || fail "it said: $(cat "$work/said")"
cmp -n 196608 "$work/main.bin" "$work/displays/display-01.flash"
"$line" journal show --data "$work/record" | grep -q 'P1  unit_result  passed  identical' ||
  fail "the record has no result"

# The example, with a record of its own, is a batch of four displays.
here=$(cd "$(dirname "$0")" && pwd)
sh "$here/example_test.sh" "$prefix/bin" "$prefix/libexec/zvisp-simulator" \
  "$prefix/share/doc/zvisp/examples/line"
echo "$version programmed 5 banks of a display and read them back"
