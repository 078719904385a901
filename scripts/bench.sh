#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs the benchmarks, each next to a reference in the same run, and prints the ratios.
#
#   scripts/bench.sh [BUILD_DIRECTORY]            parts of the tool, and whole runs
#   scripts/bench.sh search [EXECUTABLE]          a search in directories of many files
#   scripts/bench.sh signing [EXECUTABLE [ROUNDS]]    signing and verifying
#   scripts/bench.sh batch [BUILD_DIRECTORY [ROUNDS]]    batches of zvisp-line, and a big record
set -euo pipefail
case ${1:-} in
  search | signing) exec "$(dirname "$0")/../bench/$1.sh" "${@:2}" ;;
  batch) exec "$(dirname "$0")/../bench/batch.py" "${@:2}" ;;
esac
cd "$(dirname "$0")/.."

build=${1:-build/bench}
scripts/dependencies.sh build bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZVISP_BUILD_TESTS=OFF \
  -DZVISP_BUILD_BENCHMARKS=ON > /dev/null
cmake --build "$build" > /dev/null
build=$(cd "$build" && pwd)
scratch=$(mktemp -d "${TMPDIR:-/tmp}/zvisp-bench.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

# --- Parts of the tool: processor time, the best of five -----------------------------------------

for name in option_scanner transform profile bank_map save_setting; do
  "$build/bench/bench_$name" --benchmark_format=csv --benchmark_min_time=0.05 \
    --benchmark_repetitions=5 2> /dev/null | grep '^"'
done > "$scratch/parts.csv"

nanoseconds() {
  awk -F, -v name="\"$1\"" '
    $1 == name { time = $4 * ($5 == "ms" ? 1e6 : $5 == "us" ? 1e3 : 1)
                 if (best == 0 || time < best) best = time }
    END { print best; exit best == 0 }' "$scratch/parts.csv"
}

row() {  # WHAT OURS THEIRS
  local ours theirs
  ours=$(nanoseconds "$2")
  theirs=$(nanoseconds "$3")
  awk -v what="$1" -v ours="$ours" -v theirs="$theirs" 'BEGIN {
    printf "%-44s %10.2f us %10.2f us", what, ours / 1e3, theirs / 1e3
    printf "   ratio %.2f\n", ours / theirs }'
}

row '12-option line / getopt_long' OptionScannerOnATypicalCommandLine GetoptLongOnATypicalCommandLine
row 'ASCII path, UTF-8 to wide / iconv' Utf8ToWide/european:0 IconvUtf8ToWide/european:0
row 'ASCII path, wide to UTF-8 / iconv' WideToUtf8/european:0 IconvWideToUtf8/european:0
row 'European path, UTF-8 to wide / iconv' Utf8ToWide/european:1 IconvUtf8ToWide/european:1
row 'European path, wide to UTF-8 / iconv' WideToUtf8/european:1 IconvWideToUtf8/european:1
row 'key 100 of a profile, narrow / inih' ProfileReadNarrow InihRead
row 'key 100 of a profile, wide / inih' ProfileReadWide InihRead
row 'map of 10 files of 25 banks / open, fstat' BankMapOfTenFiles OpenAndAskForSize/25_banks
row 'count 10 files of 25 banks / open, fstat' CountBanks/25_banks OpenAndAskForSize/25_banks
row 'count 10 sparse files of 2 GiB / open, fstat' CountBanks/2_GiB OpenAndAskForSize/2_GiB
for entries in 1 16 64 256; do
  time=$(nanoseconds "SaveSetting/$entries")
  awk -v entries=$entries -v time="$time" 'BEGIN {
    printf "%-44s %10.2f us\n", "SaveSetting of " entries " bank entries", time / 1e3 }'
done

# --- Whole runs, in elapsed time -----------------------------------------------------------------

compare() {
  echo "$1"
  shift
  "$build/bench/compare_runs" "$@"
}

# Two installations: one with the plug-in that does nothing, one with the simulated display.
tool=$build/bin/zvisp
cp "$tool" "$build/bench/zvisp"
export ZVISP_SIM_DIR=$scratch/displays
head -c 65536 /dev/urandom > "$scratch/64K.bin"
head -c 1048576 /dev/urandom > "$scratch/1M.bin"

for locale in C C.UTF-8; do
  LC_ALL=$locale compare "start to end with an idle plug-in, LC_ALL=$locale" 500 \
    'zvisp --isp' "$build/bench/zvisp" --isp --fw1 "$scratch/64K.bin" --bank1 0 --comm 1 -- \
    'minimal C program' "$build/bench/minimal_run" "$build/bench/PlugIn/libIsp.dylib"
done

cat > "$scratch/faux.cfg" << 'END'
adapter driver dummy
jtag newtap faux cpu -irlen 4
target create faux.cpu testee -chain-position faux.cpu
flash bank faux.flash faux 0x01000000 0x200000 2 2 faux.cpu
gdb_port disabled
tcl_port disabled
telnet_port disabled
init
END

for size in 64K 1M; do
  file=$scratch/$size.bin
  program=("$tool" --isp --fw1 "$file" --bank1 0 --comm 1)
  # Once by hand, to know that both really write.
  [[ $("${program[@]}") == *Success* ]]
  cmp -n "$(wc -c < "$file")" "$file" "$ZVISP_SIM_DIR/display-01.flash"
  compare "program and verify $size on the simulated display" 100 \
    'zvisp --isp' "${program[@]}" -- \
    'cp and cmp' sh -c "cp '$file' '$scratch/copy' && cmp '$file' '$scratch/copy'"
  if command -v openocd > /dev/null; then
    write="flash write_image erase $file 0x01000000 bin"
    said=$(openocd -d0 -f "$scratch/faux.cfg" -c "echo [capture {$write}]; shutdown" 2>&1)
    [[ $said == *wrote* ]]
    compare "program $size, verified by us only" 100 \
      'zvisp --isp' "${program[@]}" -- \
      'OpenOCD, faux flash' openocd -d0 -l /dev/null -f "$scratch/faux.cfg" -c "$write; shutdown"
  fi
done
