#!/bin/sh
# SPDX-License-Identifier: MIT
# steps.sh TOOL: programs two files into the simulated display, dumps the flash, compares. It needs
# nothing but a shell and the basic tools, so that it also runs in a bare root.
set -eu

tool=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
ZVISP_SIM_DIR=$work/displays
export ZVISP_SIM_DIR

# Success is the status 0 and the line at the end; a refused command line ends with 0 too.
success=$(printf '\033[32mSuccess\n\033[m')
run() {
  if ! "$tool" "$@" >"$work/said" || [ "$(tail -c 16 "$work/said")" != "$success" ]; then
    cat "$work/said"
    exit 1
  fi
}

cd "$work"
head -c 196608 /dev/urandom >main.bin
head -c 65536 /dev/urandom >panel.bin
cat main.bin panel.bin >expected
run --isp --fw1 main.bin --bank1 0 --fw2 panel.bin --bank2 3 --comm 1
run --dumpflash --dumpaddr 0 --dumplen 262144 --dumpname dump.bin --comm 1
cmp expected dump.bin
echo "programmed 4 banks through $tool and read them back"
