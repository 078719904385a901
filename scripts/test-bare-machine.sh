#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the README's commands as a new user does, in bare roots of this machine's Debian release.
#
#   scripts/test-bare-machine.sh [install | demo | test]...     without a word, all three
#
# Nothing is installed in such a root but what a minimal Debian has. The clone in it is the last
# commit. It takes half an hour and more: run it before a release and after a change of
# scripts/dependencies.sh. It needs debootstrap, git and the rights of root.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

[ "$(id -u)" -eq 0 ] || { echo "test-bare-machine: making a root needs the rights of root" >&2; exit 1; }
work=$(mktemp -d -p "${TMPDIR:-/var/tmp}")
tidy() {
  local root
  for root in "$work"/*/; do remove_root "${root%/}"; done
  rm -rf "$work"
}
trap tidy EXIT

# bare_machine NAME: a bare root with a clone of the last commit in /home/user/zvisp.
bare_machine() {
  root=$work/$1
  echo "=== $1: a bare machine"
  mkdir "$root"
  quietly "Making the root" clean_root "$root" "$work/$1.log"
  mount -t devpts devpts "$root/dev/pts"
  mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
  chroot "$root" useradd --create-home --shell /bin/bash user
  git clone --quiet --no-hardlinks . "$root/home/user/zvisp"
  chroot "$root" chown -R user: /home/user/zvisp
}

# inside USER COMMAND: runs a line of shell in the clone, with a plain environment; shows it, its
# output and its time.
inside() {
  local started=$SECONDS status=0 home=/root
  [ "$1" = root ] || home=/home/$1
  echo "\$ $2        ($1)"
  # shellcheck disable=SC2016  # the words are the inner shell's to expand
  chroot --userspec="$1" "$root" env -i HOME="$home" TERM=dumb \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    sh -c 'cd /home/user/zvisp && eval "$1"' sh "$2" 2>&1 | tee "$work/said" || status=$?
  echo "=== status $status after $((SECONDS - started)) s"
  return "$status"
}

fail() {
  echo "test-bare-machine: $*" >&2
  exit 1
}
# said TEXT: the last command printed it.
said() { grep -qF -e "$1" "$work/said" || fail "\"$1\" was not said"; }
# The commands here are those of the README, or the README has changed and this script has not.
readme_says() { grep -qF -e "$1" README.md || fail "the README does not say \"$1\" any more"; }

# A compiler and CMake alone, and a user who installs as the README says; root does the last step.
try_install() {
  bare_machine install
  readme_says 'cmake -S . -B build'
  readme_says 'cmake --build build'
  readme_says 'cmake --install build'
  inside root 'apt-get update -qq && apt-get install -y -qq g++ cmake >/dev/null 2>&1'
  inside user 'cmake -S . -B build'
  said 'left out: the reference signer'
  said 'left out: zvisp-line'
  inside user 'cmake --build build'
  inside root 'cmake --install build'
  said 'left out: the reference signer'
  said 'left out: zvisp-line'
  said 'your plug-ins belong in /usr/local/libexec/zvisp'
  inside user 'sh tests/package/simulator_test.sh /usr/local/bin/zvisp-simulator'
  inside root 'apt-get install -y -qq man-db zsh fish bash-completion >/dev/null 2>&1'
  inside user 'man -w zvisp zvisp-simulator'
  # shellcheck disable=SC2016  # zsh expands it
  inside user 'zsh -ic "autoload -Uz compinit; compinit -u; print \$_comps[zvisp]"'
  said _zvisp
  inside user 'bash -c ". /usr/share/bash-completion/bash_completion; _completion_loader zvisp
    complete -p zvisp"'
  said '-F _zvisp zvisp'
  inside user 'fish -c "set -p fish_complete_path /usr/local/share/fish/vendor_completions.d
    complete -C \"zvisp --getsc\""'
  said getscalertype
}

try_demo() {
  bare_machine demo
  readme_says ./demo
  # Without root and without sudo, a sentence says what to do.
  if inside user ./demo; then fail "./demo installed packages without root"; fi
  said 'installing needs root, and there is no sudo'
  inside root ./demo
  said 'The flash holds the firmware byte for byte'
  said 'comm-2  ZP1  PASS  identical'
  inside root './demo line'
  said 'A3  ZP00000003  FAIL  uncertain'
  said 'A3  ZP00000003  PASS  identical'
  inside root './demo /bin/ls'
  said 'The flash holds the firmware byte for byte'
  if inside root './demo /etc'; then fail "./demo took a directory"; fi
  said 'is not an ordinary file'
}

try_test() {
  bare_machine test
  readme_says ./test
  inside root ./test
  said '100% tests passed'
  # A user who is not root, and a directory in memory that he may not write.
  chmod 755 "$root/dev/shm"
  inside root 'chown -R user: .'
  inside user ./test
  said '100% tests passed'
}

[ $# -gt 0 ] || set -- install demo test
for part in "$@"; do
  case $part in
    install | demo | test) "try_$part" ;;
    *) fail "no part $part" ;;
  esac
done
echo "=== The README's commands work on a bare machine: $*, after $SECONDS s"
