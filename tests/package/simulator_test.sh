#!/bin/sh
# SPDX-License-Identifier: MIT
# simulator_test.sh COMMAND: zvisp-simulator keeps its displays with the user, in ZVISP_SIM_DIR, in
# XDG_STATE_HOME or under HOME, and never in the installation.
set -eu

command=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "simulator_test: $*"; exit 1; }

sh "$here/steps.sh" "$command"
head -c 70000 /dev/urandom >"$work/panel.bin"

# made WHERE ENVIRONMENT...: with this environment alone, a run makes its display there.
made() {
  where=$1
  shift
  env -i PATH="$PATH" "$@" "$command" --isp --fw "$work/panel.bin" --comm 1 >"$work/said" 2>&1 ||
    fail "with $*: $(cat "$work/said")"
  cmp -n 70000 "$work/panel.bin" "$where/display-01.flash" || fail "no display in $where"
}
default=.local/state
if [ "$(uname -s)" = Darwin ]; then default='Library/Application Support'; fi
mkdir "$work/home" "$work/elsewhere"
made "$work/home/$default/zvisp-simulator" HOME="$work/home"
made "$work/state/zvisp-simulator" HOME="$work/home" XDG_STATE_HOME="$work/state"
made "$work/chosen" HOME="$work/home" XDG_STATE_HOME="$work/state" ZVISP_SIM_DIR="$work/chosen"
rm -r "${work:?}/home"
mkdir "$work/home"
made "$work/home/$default/zvisp-simulator" HOME="$work/home" XDG_STATE_HOME=relative

# A link, a relative link and the directory of the caller make no difference.
ln -s "$command" "$work/elsewhere/link"
ln -s elsewhere/link "$work/second"
command=$work/second
(cd / && made "$work/linked" ZVISP_SIM_DIR="$work/linked")

if env -i PATH="$PATH" "$command" --resetmcu >"$work/said" 2>&1; then
  fail "a run without any directory succeeded"
fi
grep -q 'name a directory for the simulated displays in ZVISP_SIM_DIR' "$work/said" ||
  fail "a run without any directory said: $(cat "$work/said")"
: >"$work/file"
if env -i PATH="$PATH" HOME="$work/file" "$command" --resetmcu >"$work/said" 2>&1; then
  fail "a run with a directory that cannot be made succeeded"
fi
grep -q 'name another directory in ZVISP_SIM_DIR' "$work/said" ||
  fail "a run with a directory that cannot be made said: $(cat "$work/said")"
echo "the displays of $1 are with the user"
