#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian packages, holds them to lintian, and tries them with dpkg in a clean root.
#
#   scripts/test-package.sh [BUILD-DIRECTORY]     without it, build/release is built
#
# In the clean root, real plug-ins have to survive what dpkg does, both packages have to work and
# to leave nothing. That part needs debootstrap and the rights of root.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

build=${1:-build/release}
if [ $# -eq 0 ]; then
  configure "$build" -DCMAKE_BUILD_TYPE=Release -DZVISP_BUILD_TESTS=OFF
  cmake --build "$build" --parallel "$(processors)"
fi
rm -rf "$build/packages"
cmake --build "$build" --target package >/dev/null
packages=("$build"/packages/*.deb)
for package in "${packages[@]}"; do echo "package: $package, $(wc -c <"$package") bytes"; done

if command -v lintian >/dev/null; then
  lintian --fail-on error,warning --allow-root "${packages[@]}"
  echo "lintian: no error and no warning that is not explained in packaging/debian/"
else
  echo "skipped: lintian is not installed"
  [ -z "${CI:-}" ] || exit 1
fi

if [ "$(id -u)" -ne 0 ]; then
  echo "skipped: a clean root to install the packages in needs the rights of root"
  exit 0
fi
# What the packages ask for, by name: the versions are dpkg's to judge.
needs=$(for package in "${packages[@]}"; do
  dpkg-deb -f "$package" Depends | sed 's/([^)]*)//g; s/|[^,]*//g; s/ //g' | tr ',' '\n'
done | sort -u)
root=$(mktemp -d)
trap 'remove_root "$root"' EXIT
# shellcheck disable=SC2086  # the names are words
quietly "Making a clean root" clean_root "$root" "$build/debootstrap.log" $needs
mkdir "$root/packages" "$root/steps"
cp "${packages[@]}" "$root/packages/"
cp tests/package/*.sh "$root/steps/"

echo "What dpkg does to real plug-ins:"
chroot "$root" sh /steps/dpkg_test.sh /packages
chroot "$root" sh -c 'dpkg -i /packages/*.deb' >/dev/null
chroot "$root" sh /steps/simulator_test.sh /usr/bin/zvisp-simulator
chroot "$root" sh /steps/line_test.sh /usr
[ -z "$(find "$root/usr/libexec" -name 'display*')" ] ||
  { echo "a display was made in the installation"; exit 1; }
chroot "$root" sh -c 'zvisp --resetmcu --comm 1' >"$root/said" || true
grep -q 'Error Code: 0xD67' "$root/said" ||
  { echo "the tool without a plug-in said:"; cat "$root/said"; exit 1; }
chroot "$root" dpkg --purge zvisp zvisp-simulator >/dev/null
left=$(find "$root/usr" -name '*zvisp*')
[ -z "$left" ] || { echo "the packages left: $left"; exit 1; }
echo "both packages work in a clean root and leave nothing"
