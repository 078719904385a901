#!/bin/sh
# SPDX-License-Identifier: MIT
# readme_test.sh TOOL SIMULATED-DISPLAY SIGNER SOURCE-DIR: runs the commands of the README's section
# "Five tasks" on a simulated display. Each must succeed.
set -eu

root=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/bin/PlugIn" "$scratch/work" "$scratch/displays"
cp "$1" "$scratch/bin/zvisp"
cp "$2" "$scratch/bin/PlugIn/libIsp.dylib"
cp "$3" "$scratch/bin/libSignVerify.dylib"
export PATH="$scratch/bin:$PATH" ZVISP_SIM_DIR="$scratch/displays"
cd "$scratch/work"

# The files that the section takes for granted.
head -c 157286 /dev/urandom >main.bin
head -c 65536 /dev/urandom >panel.bin
cp main.bin ACME_M27_1.bin
cp "$root/examples/IspSetting.ini" .
cp "$root/tests/data/signer/sign.key" sign.key
cp "$root/tests/data/signer/sign.pub" verify.pub
zvisp --sign --sw --dsmode 3 --fw main.bin --skfile sign.key >/dev/null

section=$(sed -n '/^## Five tasks$/,/^## Telling success$/p' "$root/README.md")
commands=$(printf '%s\n' "$section" | awk '/^```sh$/ { inside = 1; next } /^```$/ { inside = 0 } inside')
[ "$(printf '%s\n' "$commands" | wc -l)" -eq 5 ] || { echo "not five commands: $commands"; exit 1; }
printf '%s\n' "$commands" | sed -n "s|^zvisp |$root/examples/flash-one.sh run.log |p" >commands.sh
[ "$(wc -l <commands.sh)" -eq 5 ] || { echo "not five runs of zvisp: $commands"; exit 1; }
while read -r command; do
  (eval "$command") || { echo "FAILED: $command"; cat run.log; exit 1; }
done <commands.sh

# What the pictures and the text say of them: three banks and one, and the file read back.
head -c 157286 "$ZVISP_SIM_DIR/display-01.flash" | cmp - main.bin
tail -c +262145 "$ZVISP_SIM_DIR/display-01.flash" | cmp - panel.bin
head -c 65536 main.bin | cmp - first.bin
echo "The five commands succeed."
