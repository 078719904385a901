#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing through the platform's package manager, and says what it installs.
#
#   scripts/dependencies.sh GROUP...
#
# Groups: build (compiler and CMake), line (libraries of zvisp-line), test (what ./test runs with),
# thorough (what the slow tests run with), checks (static analysis, sanitizers, clean roots), bench.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

# Debian packages of a group, one line each.
debian_packages() {
  case $1 in
    build)    echo g++ cmake make ninja-build ;;
    line)     echo libcli11-dev nlohmann-json3-dev libtomlplusplus-dev libssl-dev ;;
    test)     echo libgtest-dev libgmock-dev libssl-dev openssl seabios edid-decode \
                   mandoc zsh fish bash-completion python3 python3-jsonschema binutils ;;
    thorough) echo valgrind clang libclang-rt-dev llvm lld nodejs npm dpkg-dev file lintian ;;
    checks)   echo clang clang-format clang-tidy cppcheck shellcheck valgrind libc++-dev \
                   libc++abi-dev libclang-rt-dev googletest libbenchmark-dev debootstrap ;;
    bench)    echo libbenchmark-dev libinih-dev openocd ;;
    *)        echo "dependencies: no group $1" >&2; exit 2 ;;
  esac
}

# Homebrew's names of the same; what it does not have is left out, and its tests say so.
brew_packages() {
  case $1 in
    build)    echo cmake ninja ;;
    line)     echo cli11 nlohmann-json tomlplusplus openssl@3 ;;
    test)     echo googletest openssl@3 mandoc zsh fish bash-completion@2 ;;
    thorough) echo llvm ;;
    checks)   echo llvm cppcheck shellcheck google-benchmark ;;
    bench)    echo google-benchmark inih open-ocd ;;
    *)        echo "dependencies: no group $1" >&2; exit 2 ;;
  esac
}

install_on_debian() {
  local missing=() package sudo=()
  for package in "$@"; do
    # A Node.js of another origin brings npm along, and excludes the packages.
    case $package in
      nodejs | npm) if command -v npm >/dev/null; then continue; fi ;;
    esac
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "dependencies: installing needs root, and there is no sudo. Run this as root, then try" \
        "again: apt-get install ${missing[*]}" >&2
      exit 1
    fi
    sudo=(sudo)
    # The password is asked for here, where its question can be seen.
    sudo -v
  fi
  quietly "Reading the lists of packages" ${sudo[@]+"${sudo[@]}"} apt-get update -qq
  quietly "Installing, a few minutes: ${missing[*]}" \
    ${sudo[@]+"${sudo[@]}"} env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

install_on_macos() {
  if ! command -v brew >/dev/null; then
    echo "dependencies: this needs Homebrew to install: $*" >&2
    exit 1
  fi
  local missing=() package
  for package in "$@"; do
    brew list --versions "$package" >/dev/null || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  quietly "Installing, a few minutes: ${missing[*]}" brew install --quiet "${missing[@]}"
}

# All groups at once: one look at the lists, one installation.
system=$(uname -s)
packages=()
for group in "$@"; do
  case $system in
    Darwin) list=$(brew_packages "$group") ;;
    *)      list=$(debian_packages "$group") ;;
  esac
  read -ra names <<<"$list"
  packages+=("${names[@]}")
done
[ ${#packages[@]} -gt 0 ] || { echo "dependencies: name a group" >&2; exit 2; }
if [ "$system" = Darwin ]; then
  install_on_macos "${packages[@]}"
elif command -v apt-get >/dev/null; then
  install_on_debian "${packages[@]}"
else
  echo "dependencies: without apt-get nothing is installed here. Debian calls what is needed:" \
    "${packages[*]}"
fi
