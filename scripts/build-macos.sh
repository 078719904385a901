#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds both macOS slices, strips them, joins them to universal binaries in
# build/macos-universal/, and packs zvisp and zvisp-simulator. The reference signer is left out: it
# needs OpenSSL's libcrypto, which does not come with Zig's macOS headers. On a Mac with OpenSSL the
# ordinary build makes it.
set -eu

cd "$(dirname "$0")/.."
out=build/macos-universal

# Debian gives the tools their names with and without the version.
tool() {
  command -v "$1" || command -v "$1-14" || { echo "build-macos: $1 is needed" >&2; exit 1; }
}
lipo=$(tool llvm-lipo)
strip=$(tool llvm-strip)

scripts/install-zig.sh >/dev/null
for slice in arm64 x86_64; do
  cmake --preset "macos-$slice" >/dev/null
  cmake --build --preset "macos-$slice" -j "${JOBS:-2}"
done

rm -rf "$out"
for file in zvisp zvisp-line PlugIn/libIsp.dylib libSignVerify.dylib; do
  [ -e "build/macos-arm64/bin/$file" ] || continue
  mkdir -p "$(dirname "$out/$file")"
  for slice in arm64 x86_64; do
    # Stripped before they are joined: the strip renews the signature of the arm64 slice.
    "$strip" -x "build/macos-$slice/bin/$file" -o "$out/$file.$slice"
  done
  "$lipo" -create "$out/$file.arm64" "$out/$file.x86_64" -output "$out/$file"
  chmod 755 "$out/$file"
  rm "$out/$file.arm64" "$out/$file.x86_64"
done
rm -rf build/macos-arm64/packages
cmake --build --preset macos-arm64 --target package >/dev/null
echo "universal binaries: $out"
echo "packages: $(echo build/macos-arm64/packages/*.tar.gz)"
