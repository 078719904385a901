#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the Debian package, installs it into a clean root of this release, and programs the
# simulated display there. The clean root needs debootstrap and the rights of root.
#
#   scripts/test-package.sh [BUILD-DIRECTORY]     without it, build/release is built
set -eu

cd "$(dirname "$0")/.."
build=${1:-build/release}
if [ $# -eq 0 ]; then
  cmake --preset release -DZVISP_BUILD_TESTS=OFF
  cmake --build --preset release -j "${JOBS:-2}"
fi
rm -rf "$build/packages"
cmake --build "$build" --target package >/dev/null
package=$(echo "$build"/packages/*.deb)
echo "package: $package, $(wc -c <"$package") bytes"

if [ "$(id -u)" -ne 0 ]; then
  echo "skipped: a clean root to install the package in needs the rights of root"
  exit 0
fi

# The mirror and release that this machine itself uses.
# shellcheck source=/dev/null
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
# shellcheck disable=SC2016  # the word is apt's to expand
mirror=$(apt-get indextargets --format '$(REPO_URI)' "Release: $release" "Identifier: Packages" |
  head -n 1)
# What the package asks for, by name: the versions are dpkg's to judge.
needs=$(dpkg-deb -f "$package" Depends | sed 's/([^)]*)//g; s/|[^,]*//g; s/ //g')

root=$(mktemp -d)
mounted=
tidy() {
  [ -z "$mounted" ] || umount "$root/proc"
  rm -rf --one-file-system "$root"
}
trap tidy EXIT
log=$build/debootstrap.log
debootstrap --variant=minbase --include="$needs" "$release" "$root" "$mirror" >"$log" 2>&1 ||
  { tail -n 20 "$log"; exit 1; }
cp "$package" "$root/zvisp.deb"
cp tests/package/steps.sh "$root/steps.sh"
chroot "$root" dpkg -i /zvisp.deb >/dev/null
# A process finds its own place under /proc.
mount -t proc proc "$root/proc" && mounted=yes
chroot "$root" sh /steps.sh zvisp
chroot "$root" dpkg -r zvisp >/dev/null
[ ! -e "$root/usr/bin/zvisp" ] || { echo "the package left its link behind"; exit 1; }
echo "the package works in a clean $release and leaves nothing behind"
