#!/bin/sh
# SPDX-License-Identifier: MIT
# dpkg_test.sh PACKAGES: in a clean root, as root: no installation, repetition, upgrade, failed
# upgrade, removal or purge of the packages touches a real plug-in. PACKAGES is the directory of both.
set -eu

packages=$1
tool=$(echo "$packages"/zvisp_*.deb)
simulator=$(echo "$packages"/zvisp-simulator_*.deb)
home=/usr/libexec/zvisp
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "dpkg_test: $*"; exit 1; }
# Runs dpkg; shows what it said only when it fails.
quiet() { "$@" >"$work/said" 2>&1 || { cat "$work/said"; fail "failed: $*"; }; }
version_of() { dpkg-query -W -f='${Version}' "$1"; }

# What a customer copies there, and the check that both are still it, and that nothing else is left.
give_real_plugins() {
  mkdir -p "$home/PlugIn"
  echo "the customer's plug-in" >"$home/PlugIn/libIsp.dylib"
  echo "the customer's signer" >"$home/libSignVerify.dylib"
}
expect_real_plugins() {
  [ "$(cat "$home/PlugIn/libIsp.dylib")" = "the customer's plug-in" ] || fail "$1: libIsp.dylib"
  [ "$(cat "$home/libSignVerify.dylib")" = "the customer's signer" ] || fail "$1: libSignVerify.dylib"
  [ -z "$(find "$home" -name '*zvisp-kept*')" ] || fail "$1: a copy was left"
  echo "  $1: both real plug-ins are as they were"
}
start_again() {
  dpkg --purge zvisp zvisp-simulator >/dev/null 2>&1 || true
  rm -rf "$home"
}

# repack OLD NEW COMMAND: the package OLD, changed by a command in its tree, as the file NEW.
repack() {
  rm -rf "$work/tree"
  dpkg-deb -R "$1" "$work/tree"
  (cd "$work/tree" && eval "$3")
  (cd "$work/tree" && find usr -type f -exec md5sum {} + >DEBIAN/md5sums)
  quiet dpkg-deb --root-owner-group -b "$work/tree" "$2"
}

# The package before the simulator became one of its own: it owned the plug-ins' names and had no
# scripts.
dpkg-deb -x "$simulator" "$work/simulated"
simulated=$work/simulated/usr/libexec/zvisp-simulator
export simulated
# shellcheck disable=SC2016  # repack expands it
repack "$tool" "$work/before.deb" '
  rm -f DEBIAN/preinst DEBIAN/postinst DEBIAN/postrm usr/libexec/zvisp/PlugIn/README
  sed -i "s/^Version: .*/Version: 1.0.9/" DEBIAN/control
  cp "$simulated/PlugIn/libIsp.dylib" usr/libexec/zvisp/PlugIn/
  cp "$simulated/libSignVerify.dylib" usr/libexec/zvisp/'
repack "$tool" "$work/next.deb" 'sed -i "s/^Version: .*/Version: 9.0.0-1/" DEBIAN/control'
# Cannot be unpacked, because it has a file of another package.
repack "$tool" "$work/broken.deb" '
  sed -i "s/^Version: .*/Version: 9.0.0-2/" DEBIAN/control
  mkdir -p usr/lib && echo >usr/lib/os-release'

start_again
quiet dpkg -i "$tool"
[ ! -e "$home/PlugIn/libIsp.dylib" ] || fail "an installation brings a libIsp.dylib"
[ ! -e "$home/libSignVerify.dylib" ] || fail "an installation brings a libSignVerify.dylib"
[ -s "$home/PlugIn/README" ] || fail "PlugIn/README is missing"
give_real_plugins
quiet dpkg -i "$simulator"
expect_real_plugins 'installing the simulator'
quiet dpkg -i "$tool"
expect_real_plugins 'reinstalling'
quiet dpkg -i "$work/next.deb"
[ "$(version_of zvisp)" = 9.0.0-1 ] || fail 'the upgrade was not made'
expect_real_plugins 'upgrading'
if dpkg -i "$work/broken.deb" >"$work/said" 2>&1; then fail 'the broken package was installed'; fi
[ "$(version_of zvisp)" = 9.0.0-1 ] || fail 'the failed upgrade left another version'
expect_real_plugins 'an upgrade that fails'
quiet dpkg -r zvisp
expect_real_plugins 'removing'
quiet dpkg --purge zvisp
expect_real_plugins 'purging'
[ "$(find "$home" -type f | wc -l)" -eq 2 ] || fail "more than the real plug-ins was left"

start_again
quiet dpkg -i "$work/before.deb"
give_real_plugins
quiet dpkg -i "$tool"
expect_real_plugins 'upgrading from the package that owned their names'
quiet dpkg --purge zvisp
expect_real_plugins 'purging after that'

start_again
quiet dpkg -i "$work/before.deb"
give_real_plugins
if dpkg -i "$work/broken.deb" >"$work/said" 2>&1; then fail 'the broken package was installed'; fi
[ "$(version_of zvisp)" = 1.0.9 ] || fail 'the failed upgrade left another version'
expect_real_plugins 'an upgrade that fails, from the package that owned their names'

start_again
quiet dpkg -i "$work/before.deb"
mkdir -p /opt/plugins
echo "the customer's plug-in" >/opt/plugins/libIsp.dylib
echo "the customer's signer" >/opt/plugins/libSignVerify.dylib
ln -sf /opt/plugins/libIsp.dylib "$home/PlugIn/libIsp.dylib"
ln -sf /opt/plugins/libSignVerify.dylib "$home/libSignVerify.dylib"
quiet dpkg -i "$tool"
expect_real_plugins 'the same with links to them'
[ -L "$home/PlugIn/libIsp.dylib" ] || fail 'the link became a file'

start_again
quiet dpkg -i "$work/before.deb"
quiet dpkg -i "$tool"
[ ! -e "$home/PlugIn/libIsp.dylib" ] || fail 'the simulated display stayed in the tool'
[ ! -e "$home/libSignVerify.dylib" ] || fail 'the reference signer stayed in the tool'
grep -q 'install zvisp-simulator' "$work/said" || fail 'the upgrade does not say what is missing'
echo "  upgrading without real plug-ins: the simulation leaves the tool, and dpkg's output says so"

start_again
for package in "$tool" "$simulator"; do
  if dpkg-deb -c "$package" | grep -E ' \./usr/libexec/zvisp/(PlugIn/libIsp|libSignVerify)\.dylib$'
  then
    fail "$package contains a file that a real plug-in is called"
  fi
done
