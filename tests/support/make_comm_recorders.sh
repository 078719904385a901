#!/bin/sh
# SPDX-License-Identifier: MIT
# make_comm_recorders.sh <C compiler> <tests directory> <output directory>
# Makes comm_recorder.c into the libraries that the tests of the communication proxy load:
#   whole.dylib, second.dylib   every export
#   looked_up.dylib             every export, noting when it is looked up (not on macOS, whose
#                               loader has no indirect functions)
#   without_<export>.dylib      every export but one, once for each export
# It is compiled once and linked many times; a compilation for each would take half a minute.
set -eu
compiler=$1
tests=$2
out=$3
source=$tests/support/comm_recorder.c

compile() {
  object=$1
  shift
  "$compiler" -c -fPIC -fvisibility=hidden -I "$tests" "$@" -o "$out/$object.o" "$source"
}

# link <library> <object> [<export to leave out>]
if [ "$(uname)" = Darwin ]; then
  link() {
    "$compiler" -shared -o "$out/$1.dylib" "$out/$2.o" ${3:+-Wl,-unexported_symbol,_$3}
  }
else
  link() {
    printf '{ local: %s; };\n' "${3:-nothing}" >"$out/exports.map"
    "$compiler" -shared -nostdlib -Wl,--version-script="$out/exports.map" \
      -o "$out/$1.dylib" "$out/$2.o"
  }
fi

mkdir -p "$out"
compile recorder
link whole recorder
link second recorder
if [ "$(uname)" != Darwin ]; then
  compile looked_up -DLOG_LOOK_UPS
  link looked_up looked_up
fi
sed -n 's/^EXPORT(\(.*\))$/\1/p' "$source" | while read -r symbol; do
  link "without_$symbol" recorder "$symbol"
done
