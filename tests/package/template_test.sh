#!/bin/sh
# SPDX-License-Identifier: MIT
# template_test.sh BUILD-DIRECTORY: walks the way of examples/plugin/README.md with an installation
# in a scratch prefix, and tries what zvisp_add_plugin promises.
set -eu

build=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
home=$prefix/libexec/zvisp
example=$prefix/share/doc/zvisp/examples/plugin
fail() { echo "template_test: $*"; exit 1; }

cmake --install "$build" --prefix "$prefix" --component tool >/dev/null
# CMake makes what the README's commands make, by the generator of this build.
cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
CMAKE_GENERATOR=$(cached CMAKE_GENERATOR)
export CMAKE_GENERATOR
# configure SOURCE BINARY
configure() {
  cmake --no-warn-unused-cli -S "$1" -B "$2" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_MAKE_PROGRAM="$(cached CMAKE_MAKE_PROGRAM)" \
    -DCMAKE_C_COMPILER="$(cached CMAKE_C_COMPILER)" \
    -DCMAKE_CXX_COMPILER="$(cached CMAKE_CXX_COMPILER)" -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -DCMAKE_C_FLAGS="-Wall -Wextra -pedantic -Wconversion" -DCMAKE_CXX_FLAGS="-Wall -Wextra" \
    >"$scratch/said" || fail "$1 is not configured: $(cat "$scratch/said")"
}

# check_plugin FILE: every check passes; a build without zvisp-line has none.
check_plugin() {
  [ -f "$1" ] || fail "$1 was not built"
  [ -x "$prefix/bin/zvisp-line" ] || return 0
  "$prefix/bin/zvisp-line" check-plugin --with-device "$1" >"$scratch/said" ||
    fail "$1: $(cat "$scratch/said")"
}

# The commands of the README, with this installation in the place of /usr.
mkdir "$scratch/empty"
cd "$scratch/empty"
awk '/^```sh$/ { inside = 1; next } /^```$/ { exit } inside' "$example/README.md" >"$scratch/lines"
[ "$(wc -l <"$scratch/lines")" -eq 4 ] || fail "not four commands: $(cat "$scratch/lines")"
while read -r line; do
  case $line in
    "cp -R /usr/share/"*) sh -c "cp -R $prefix/share/${line#cp -R /usr/share/}" ;;
    "cmake -S . -B build") configure . build ;;
    "cmake --build build") $line >"$scratch/said" || fail "$(cat "$scratch/said")" ;;
    "zvisp-line check-plugin --with-device "*) check_plugin "${line##* }" ;;
    *) fail "the README has another command: $line" ;;
  esac
done <"$scratch/lines"

# run CODE WORDS...: zvisp with the plug-in of the build directory ends with that code.
run() {
  code=$1
  shift
  cp build/PlugIn/libIsp.dylib "$home/PlugIn/"
  status=0
  LC_ALL=C.UTF-8 "$prefix/bin/zvisp" "$@" >"$scratch/said" || status=$?
  if [ "$code" = 0 ]; then
    [ "$(tail -c 16 "$scratch/said")" = "$(printf '\033[32mSuccess\n\033[m')" ] ||
      fail "$*: $(cat "$scratch/said")"
    return
  fi
  grep -q "Error Code: $code\$" "$scratch/said" || fail "$*, not $code: $(cat "$scratch/said")"
  [ "$status" -ne 0 ] || fail "$* ends with status 0"
}

# As it comes: it refuses what is wrong, and does not report success for work that it has not done.
head -c 100000 /dev/urandom >é.bin
: >empty.bin
run 0x2001 --isp --fw é.bin --comm 7
run 0x1001 --ispdiff --fw é.bin --comm 7
run 0x1002 --isp --fw empty.bin --comm 7
run 0x2001 --dumpflash --dumpaddr 0 --dumplen 16 --comm 7
run 0x1008 --dumpflash --dumpaddr 0xFFFFF0 --dumplen 17 --comm 7
run 0x100A --recordver --cmd --comm 7
run 0x6 --enterispmode --comm 7
[ ! -e dumpFile.bin ] || fail "a dump that failed left a file"

# With a display: programs, pads, dumps.
cp "$here/template/device_in_a_file.c" device.c
cmake --build build >"$scratch/said" || fail "$(cat "$scratch/said")"
check_plugin build/PlugIn/libIsp.dylib
run 0 --isp --fw é.bin --bank 1 --comm 7
head -c 65536 /dev/zero | cat - é.bin >expected
head -c 31072 /dev/zero | tr '\0' '\377' >>expected
cmp flash expected
run 0 --dumpflash --dumpaddr 0x10000 --dumplen 100000 --dumpname back.bin --comm 7
cmp back.bin é.bin
run 0x1009 --dumpflash --dumpaddr 0 --dumplen 16 --dumpname nowhere/back.bin --comm 7
run 0x2003 --isp --fw é.bin --comm 8

# refused WHAT NAME: the build fails, names it, and leaves no plug-in to be copied.
refused() {
  if cmake --build build >"$scratch/said" 2>&1; then fail "$1 was built"; fi
  tr '\n' ' ' <"$scratch/said" | tr -s ' ' | grep -q "$2" || fail "$1: $(cat "$scratch/said")"
  [ ! -e build/PlugIn/libIsp.dylib ] || fail "$1 left a plug-in"
}
sed -e 's/GetKeyFromFlash/GetKey/' -e 's/RecordFWVersion/recordFWVersion/' "$example/plugin.c" \
  >plugin.c
sed -i.bak 's/^int GetKey(/int GetKey(Setting* s, unsigned char* k);&/
  s/^int recordFWVersion(/int recordFWVersion(Setting* s);&/' plugin.c
refused 'a plug-in without two calls' 'lacks required calls .*: RecordFWVersion, GetKeyFromFlash\.'
cp "$example/plugin.c" plugin.c
sed -i.bak 's/^void DeviceClose/void NobodyHas(void);\
&/; s/fclose(g_flash)/NobodyHas()/' device.c
refused 'a plug-in with an undefined function' NobodyHas

# The template itself in C++: the calls in C++ alone, or all of it.
cp "$example/plugin.c" plugin.cpp
cp "$here/template/device_in_a_file.c" device.c
cp device.c device.cpp
for sources in 'plugin.cpp device.c' 'plugin.cpp device.cpp'; do
  sed -e 's/LANGUAGES C)/LANGUAGES C CXX)/' -e "s/plugin.c device.c/$sources/" \
    "$example/CMakeLists.txt" >CMakeLists.txt
  rm -rf build
  configure . build
  cmake --build build >"$scratch/said" || fail "$sources: $(cat "$scratch/said")"
  run 0 --isp --fw é.bin --bank 1 --comm 7
done

# In C++: nothing but the calls is exported, and no runtime has to be on the machine.
configure "$here/template" "$scratch/signer"
cmake --build "$scratch/signer" >"$scratch/said" || fail "$(cat "$scratch/said")"
signer=$scratch/signer/libSignVerify.dylib
if command -v readelf >/dev/null; then
  exported=$(nm -D --defined-only "$signer" | sed 's/.* //' | tr '\n' ' ')
  [ "$exported" = "SignFwExport VerifySignatureExport " ] || fail "the signer exports $exported"
  ! readelf -d "$signer" | grep -E 'NEEDED.*(libstdc|libgcc|libc\+\+)' ||
    fail "the signer needs a runtime"
fi
cp "$signer" "$home/"
"$prefix/bin/zvisp" --sign --fw é.bin >"$scratch/said" || true
grep -q 'C++ signer: no signature type' "$scratch/said" || fail "$(cat "$scratch/said")"
grep -q 'Error Code: 0x4002' "$scratch/said" || fail "$(cat "$scratch/said")"
echo "the template was built from the installation, filled in, and called by zvisp"
