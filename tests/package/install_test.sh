#!/bin/sh
# SPDX-License-Identifier: MIT
# install_test.sh BUILD-DIRECTORY: installs into a scratch prefix, runs the tool through its link,
# and builds and runs a plug-in against the installed headers.
set -eu

build=$1
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
fail() { echo "install_test: $*"; exit 1; }

cmake --install "$build" --prefix "$prefix" >/dev/null
for file in libexec/zvisp/zvisp libexec/zvisp/PlugIn/libIsp.dylib share/man/man1/zvisp.1 \
    share/bash-completion/completions/zvisp share/fish/vendor_completions.d/zvisp.fish \
    include/zvisp/plugin/zvisp_plugin.h share/cmake/zvisp/zvispConfig.cmake; do
  [ -f "$prefix/$file" ] || fail "$file was not installed"
done
[ "$(readlink "$prefix/bin/zvisp")" = ../libexec/zvisp/zvisp ] || fail "bin/zvisp is no link"

# The real directory counts, whatever links lead to it.
sh "$here/steps.sh" "$prefix/bin/zvisp"
ln -s "$prefix/bin/zvisp" "$scratch/tool"
sh "$here/steps.sh" "$scratch/tool"

# The generator and the program of this build: nothing says that CMake's own choice is installed.
cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
cmake -S "$here/plugin" -B "$scratch/plugin" -DCMAKE_PREFIX_PATH="$prefix" \
  -G "$(cached CMAKE_GENERATOR)" -DCMAKE_MAKE_PROGRAM="$(cached CMAKE_MAKE_PROGRAM)" >/dev/null
cmake --build "$scratch/plugin" >/dev/null
cp "$scratch/plugin/libIsp.dylib" "$prefix/libexec/zvisp/PlugIn/"
: >"$scratch/empty.bin"
status=0
"$prefix/bin/zvisp" --isp --fw "$scratch/empty.bin" --comm 11 >"$scratch/said" || status=$?
grep -q 'Error Code: 0xB' "$scratch/said" || fail "the plug-in answered: $(cat "$scratch/said")"
[ "$status" -eq 11 ] || fail "the exit status was $status"
echo "a plug-in built from the installed headers was called"
