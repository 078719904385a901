#!/bin/sh
# SPDX-License-Identifier: MIT
# install_test.sh BUILD-DIRECTORY: installs into a scratch prefix, runs the commands there,
# and builds and runs a plug-in against the installed headers.
set -eu

build=$1
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
fail() { echo "install_test: $*"; exit 1; }

# The tool alone brings no plug-in: a real one that is there already stays as it is.
home=$prefix/libexec/zvisp
mkdir -p "$home/PlugIn"
echo "a real plug-in" >"$home/PlugIn/libIsp.dylib"
echo "a real signer" >"$home/libSignVerify.dylib"
cmake --install "$build" --prefix "$prefix" --component tool >/dev/null
for file in libexec/zvisp/zvisp libexec/zvisp/PlugIn/README share/man/man1/zvisp.1 \
    share/bash-completion/completions/zvisp share/fish/vendor_completions.d/zvisp.fish \
    share/zsh/site-functions/_zvisp \
    include/zvisp/plugin/zvisp_plugin.h share/cmake/zvisp/zvispConfig.cmake; do
  [ -f "$prefix/$file" ] || fail "$file was not installed"
done
[ "$(readlink "$prefix/bin/zvisp")" = ../libexec/zvisp/zvisp ] || fail "bin/zvisp is not a link"
[ ! -e "$prefix/bin/zvisp-simulator" ] || fail "the tool brings the simulator along"

# Everything, as the README installs it.
cmake --install "$build" --prefix "$prefix" >"$scratch/installed"
grep -q "your plug-ins belong in $home" "$scratch/installed" || fail "$(cat "$scratch/installed")"
# The lines that it gives for the shells: with them, each shell knows all commands.
commands="zvisp zvisp-simulator"
functions="_zvisp _zvisp"
if [ -e "$home/zvisp-line" ]; then
  commands="$commands zvisp-line"
  functions="$functions _zvisp-line"
fi
line_for() { sed -n "/completions in $1 need/{n;s/^-- *//p;}" "$scratch/installed"; }
if command -v bash >/dev/null; then
  bash -c "$(line_for bash); complete -p $commands" >/dev/null ||
    fail "completions of bash"
fi
if command -v zsh >/dev/null; then
  [ "$(zsh -fc "$(line_for zsh); autoload -Uz compinit; compinit -uD
    for name in $commands; do print -n \"\$_comps[\$name] \"; done")" = "$functions " ] ||
    fail "completions of zsh"
fi
if command -v fish >/dev/null; then
  for name in zvisp zvisp-simulator; do
    HOME=$scratch PATH=$prefix/bin:$PATH fish -c "$(line_for fish); complete -C '$name --getsc'" |
      grep -q getscalertype || fail "completions of fish for $name"
  done
fi
[ "$(cat "$home/PlugIn/libIsp.dylib")" = "a real plug-in" ] || fail "a real plug-in was replaced"
[ "$(cat "$home/libSignVerify.dylib")" = "a real signer" ] || fail "a real signer was replaced"
[ -f "$prefix/share/man/man1/zvisp-simulator.1" ] || fail "zvisp-simulator.1 was not installed"

if [ -e "$home/zvisp-line" ]; then sh "$here/line_test.sh" "$prefix"; fi

# The real directory counts, whatever links lead to it.
sh "$here/simulator_test.sh" "$prefix/bin/zvisp-simulator"
ln -s "$prefix/bin/zvisp" "$scratch/tool"

# The generator and the program of this build: nothing says that CMake's own choice is installed.
cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
cmake -S "$here/plugin" -B "$scratch/plugin" -DCMAKE_PREFIX_PATH="$prefix" \
  -G "$(cached CMAKE_GENERATOR)" -DCMAKE_MAKE_PROGRAM="$(cached CMAKE_MAKE_PROGRAM)" >/dev/null
cmake --build "$scratch/plugin" >/dev/null
cp "$scratch/plugin/libIsp.dylib" "$home/PlugIn/"
: >"$scratch/empty.bin"
status=0
"$scratch/tool" --isp --fw "$scratch/empty.bin" --comm 11 >"$scratch/said" || status=$?
grep -q 'Error Code: 0xB' "$scratch/said" || fail "the plug-in answered: $(cat "$scratch/said")"
[ "$status" -eq 11 ] || fail "the exit status was $status"
echo "a plug-in built from the installed headers was called"
