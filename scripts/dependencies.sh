#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing through the platform's package manager, and says what it installs.
#
#   scripts/dependencies.sh GROUP...      groups: build test checks bench
set -euo pipefail

# Debian packages of a group, one line each.
debian_packages() {
  case $1 in
    build)  echo g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libtomlplusplus-dev \
                 libssl-dev ;;
    test)   echo valgrind libgtest-dev libgmock-dev libssl-dev openssl seabios edid-decode \
                 mandoc zsh fish python3 python3-jsonschema binutils clang libclang-rt-dev ;;
    checks) echo clang-format clang-tidy cppcheck shellcheck valgrind libc++-dev libc++abi-dev \
                 googletest libbenchmark-dev llvm lld nodejs npm debootstrap \
                 dpkg-dev file ;;
    bench)  echo libbenchmark-dev libinih-dev openocd ;;
    *)      echo "dependencies.sh: no group $1" >&2; exit 2 ;;
  esac
}

# Homebrew's names of the same; what it does not have is left out, and its tests say so.
brew_packages() {
  case $1 in
    build)  echo cmake ninja cli11 nlohmann-json tomlplusplus ;;
    test)   echo googletest openssl@3 mandoc zsh fish ;;
    checks) echo llvm cppcheck shellcheck google-benchmark ;;
    bench)  echo google-benchmark inih open-ocd ;;
    *)      echo "dependencies.sh: no group $1" >&2; exit 2 ;;
  esac
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_on_debian() {
  local missing=() package
  for package in "$@"; do
    # A Node.js of another origin brings npm along, and excludes the packages.
    case $package in
      nodejs | npm) if command -v npm >/dev/null; then continue; fi ;;
    esac
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "Installing: ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

install_on_macos() {
  if ! command -v brew >/dev/null; then
    echo "This needs Homebrew to install: $*" >&2
    exit 1
  fi
  local missing=() package
  for package in "$@"; do
    brew list --versions "$package" >/dev/null || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "Installing: ${missing[*]}"
  brew install --quiet "${missing[@]}"
}

for group in "$@"; do
  if [ "$(uname -s)" = Darwin ]; then
    # shellcheck disable=SC2046  # the lists are words
    install_on_macos $(brew_packages "$group")
  else
    # shellcheck disable=SC2046
    install_on_debian $(debian_packages "$group")
  fi
done
