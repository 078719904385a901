#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the tests and runs them, all or those that ctest's -R selects; then says what was skipped.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
  cat <<'END'
./test [--all] [option of ctest ...]

Builds zvisp and its tests in build/ and runs the tests. The first run installs what is missing and
builds for about ten minutes on two cores; the tests themselves take less than a minute.

  -R REGEX   run only the tests whose name matches, and build only the programs that hold one;
             "ctest --test-dir build -N" lists the names after a build
  --all      also run the slow tests, those with the label "thorough": fuzzing, the budgets of
             instructions, the binaries for macOS, the Debian packages, longer random tests.
             .ci/run does. A compiler for each has to be there: scripts/dependencies.sh thorough
  -j N, -V, --rerun-failed, ...   go to ctest

Examples:  ./test -R Profile      ./test --all -R fuzz      ./test --rerun-failed -V
END
}

slow=(--label-exclude thorough)
selection=
options=()
while [ $# -gt 0 ]; do
  case $1 in
    -h | --help) usage; exit ;;
    --all) slow=(); export ZVISP_THOROUGH=1 ;;
    -R | --tests-regex)
      [ $# -gt 1 ] || { usage >&2; echo "test: $1 needs a regular expression" >&2; exit 2; }
      selection=$2; options+=("$1" "$2"); shift ;;
    -R*) selection=${1#-R}; options+=("$1") ;;
    *) options+=("$1") ;;
  esac
  shift
done

# Prints the names of the GoogleTest tests in some sources, "Suite.Name" each, and with the prefix
# that the tests of zvisp-line have.
names_in() {
  cat "$@" | tr '\n' ' ' | grep -oE 'TEST(_F)?\( *[A-Za-z0-9_]+, *[A-Za-z0-9_]+ *\)' |
    sed -E 's/^.*\( *([A-Za-z0-9_]+), *([A-Za-z0-9_]+) *\)$/\1.\2/' | sed 'p; s/^/line./'
}

# Prints the targets that the selected tests need, or nothing, which builds everything. The build
# lists in test-targets.txt each test program with its sources, and each other test with what it
# runs: "program TARGET SOURCE..." or "script NAME TARGET...".
targets() {
  local kind name rest
  [ -n "$selection" ] || return 0
  while read -r kind name rest; do
    read -ra rest <<<"$rest"
    if [ "$kind" = script ]; then
      if grep -qE -e "$selection" <<<"$name"; then printf '%s\n' "${rest[@]}"; fi
    # A program of tests with parameters is always built: sources do not give their whole names.
    elif grep -qE '(TYPED_TEST|TEST_P|INSTANTIATE_TEST_SUITE_P)\(' "${rest[@]}" ||
        { names_in "${rest[@]}"; echo "${name}_NOT_BUILT"; } |
          grep -E -e "$selection" >/dev/null; then
      echo "$name"
    fi
  done <build/test-targets.txt | sort -u
}

# Prints why each skipped test was skipped, from the log of the run.
skipped() {
  awk '
    /^[0-9]+\/[0-9]+ Testing: / { name = $3; reading = 0; reason = "" }
    /^Output:$/ { reading = 1; next }
    /^<end of output>$/ { reading = 0 }
    reading && !/^-+$/ && !/^(\[|Note:|Running main|$)/ && !/: Skipped$/ { reason = $0 }
    /^Skip (regular expression|return code)/ {
      print "  " name ": " (reason == "" ? "no reason given" : reason)
    }
  ' build/Testing/Temporary/LastTest.log
}

scripts/dependencies.sh build line test
quietly "Configuring, half a minute the first time" configure build -DZVISP_BUILD_TESTS=ON
wanted=$(targets | tr '\n' ' ')
if [ -n "$wanted" ]; then
  echo "Building what these tests need ..."
  # shellcheck disable=SC2086  # the targets are words
  cmake --build build --parallel "$(processors)" --target $wanted
else
  echo "Building everything, about ten minutes on two cores the first time ..."
  cmake --build build --parallel "$(processors)"
fi

echo "Testing, less than a minute on two idle cores without --all ..."
status=0
ctest --test-dir build --output-on-failure --no-tests=error --parallel "$(processors)" \
  ${slow[@]+"${slow[@]}"} ${options[@]+"${options[@]}"} || status=$?
reasons=$(skipped)
if [ -n "$reasons" ]; then echo "Skipped, and why:"; echo "$reasons"; fi
exit "$status"
