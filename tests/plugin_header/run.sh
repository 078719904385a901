#!/bin/sh
# SPDX-License-Identifier: MIT
# Compiles zvisp_plugin.h alone, and with one use of its conversion, in every language that it is
# written for, with every compiler that is there and all of its warnings as errors. Then the header
# is spoilt in copies, and every language has to refuse each of them.
#
#   run.sh INCLUDE-DIRECTORY C-COMPILER C++-COMPILER     the compilers of the build; gcc and clang
#                                                        are tried as well
set -eu
include=$1
c_standards="c99 c11 c17"
cxx_standards="c++11 c++14 c++17 c++20"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "plugin_header: $*" >&2; exit 1; }

# The names of those that are there. What says of itself, after its name, what another one said is
# the same compiler, and is left out.
present() {
  for name in "$@"; do
    if command -v "$name" >/dev/null; then
      echo "$name $("$name" --version | sed 's/^[^ ]* //; q')"
    fi
  done | sort -u -k 2 | cut -d ' ' -f 1
}
c_compilers=$(present gcc clang "$2")
cxx_compilers=$(present g++ clang++ "$3")
[ -n "$c_compilers" ] || fail "no C compiler is there: scripts/dependencies.sh build"
[ -n "$cxx_compilers" ] || fail "no C++ compiler is there: scripts/dependencies.sh build"

# In continuous integration all must be there.
if [ -n "${CI:-}" ]; then
  for name in gcc clang g++ clang++; do
    command -v "$name" >/dev/null || fail "$name is needed: scripts/dependencies.sh checks"
  done
fi

warnings="-Wall -Wextra -pedantic -Werror -Wconversion -Wsign-conversion -Wshadow -Wundef
  -Wcast-qual -Wcast-align -Wformat=2"
c_warnings="-Wstrict-prototypes -Wmissing-prototypes -Wc++-compat"
cxx_warnings="-Wold-style-cast -Wzero-as-null-pointer-constant"
# Left out of clang's -Weverything: that a record has padding, which it must keep; that the code
# would not be C90 or C++98; and the wish for containers, which C does not have. Each clang knows
# only some of them.
everything="-Weverything -Wno-padded -Wno-declaration-after-statement -Wno-c++-keyword
  -Wno-c++98-compat -Wno-c++98-compat-pedantic -Wno-unsafe-buffer-usage
  -Wno-unknown-warning-option"

is_clang() { "$1" --version | grep -q clang; }

# all_warnings COMPILER LANGUAGE
all_warnings() {
  echo "$warnings"
  if [ "$2" = c ]; then echo "$c_warnings"; else echo "$cxx_warnings"; fi
  if is_clang "$1"; then echo "$everything"; fi
}

# compile COMPILER LANGUAGE STANDARD INCLUDE SOURCE OPTION...
compile() {
  compiler=$1 language=$2 standard=$3 directory=$4 source=$5
  shift 5
  # shellcheck disable=SC2046  # the warnings are words
  "$compiler" -x "$language" -std="$standard" $(all_warnings "$compiler" "$language") -O2 \
    -I"$directory" "$@" -c "$source" -o "$scratch/object" 2>"$scratch/said"
}

# each_language COMMAND...: runs "COMMAND... COMPILER LANGUAGE STANDARD" for all of them.
each_language() {
  for compiler in $c_compilers; do
    for standard in $c_standards; do "$@" "$compiler" c "$standard"; done
  done
  for compiler in $cxx_compilers; do
    for standard in $cxx_standards; do "$@" "$compiler" c++ "$standard"; done
  done
}

echo '#include "plugin/zvisp_plugin.h"' >"$scratch/alone"
cat >"$scratch/used" <<'SOURCE'
#include "plugin/zvisp_plugin.h"
int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  char path[kPathUtf8Capacity];
  STRUCT_FLAG_SETTING flag = setting->stFlagSetting;
  if (flag.ulFlagLength != 0) return 1;
  return ZvWideToUtf8(setting->stMapFw.stBank[0].wszPath, kPathCapacity, path, sizeof path);
}
SOURCE

accepted() {
  for source in alone used; do
    compile "$1" "$2" "$3" "$include" "$scratch/$source" ||
      { cat "$scratch/said" >&2; fail "$1 -std=$3 refuses the header ($source)"; }
  done
  echo "$1 -std=$3: no warning"
}
each_language accepted

# refused WHAT MESSAGE COMPILER LANGUAGE STANDARD: the header in the spoilt copy.
refused() {
  if compile "$3" "$4" "$5" "$scratch/copy" "$scratch/alone"; then
    fail "$3 -std=$5 accepts $1"
  fi
  grep -q "$2" "$scratch/said" || { cat "$scratch/said" >&2; fail "$3 -std=$5: $1 is not named"; }
}

# spoilt WHAT MESSAGE FILE SED-SCRIPT: every language refuses the header with that change.
spoilt() {
  rm -rf "$scratch/copy"
  mkdir "$scratch/copy"
  cp -R "$include/plugin" "$scratch/copy/"
  sed "$4" "$include/plugin/$3" >"$scratch/copy/plugin/$3"
  ! cmp -s "$include/plugin/$3" "$scratch/copy/plugin/$3" || fail "$1 changed nothing"
  each_language refused "$1" "$2"
}
spoilt 'a field of another size' stMapFw_must_stay_at_offset_72 command_setting.h \
  's/^  uint32_t ulProgStartBank;/  uint64_t ulProgStartBank[2];/'
spoilt 'a new field in the middle' ulVerAddr_must_stay_at_offset_4 command_setting.h \
  's/^  uint32_t ulVerAddr;/  uint32_t ulNew; uint32_t ulVerAddr;/'
spoilt 'a record that grew' STRUCT_MERGE_FW_INFO_SETTING_must_stay_20_bytes command_setting.h \
  's/kMergeFwInfoCapacity = 16 /kMergeFwInfoCapacity = 20 /'
spoilt 'a longer signature record' szSignatureFile_must_stay_at_offset_280 digital_sign_args.h \
  's/kSignTextCapacity = 260,/kSignTextCapacity = 264,/'

# Wide text of another width is another layout, and no plug-in may be built with it.
short_wide() {
  if compile "$1" "$2" "$3" "$include" "$scratch/alone" -fshort-wchar; then
    fail "$1 -std=$3 accepts wide text of 2 bytes"
  fi
  grep -q wide_text_must_travel_as_4_byte_units "$scratch/said" || fail "$1: $(cat "$scratch/said")"
}
each_language short_wide

# In C++ the records have operations when another header declares them first: a plug-in would load
# nowhere. In C there is one view of them.
wrong_order() {
  for first in command_setting.h digital_sign_args.h; do
    printf '#include "plugin/%s"\n#include "plugin/zvisp_plugin.h"\n' "$first" >"$scratch/order"
    said=accepted
    compile "$1" "$2" "$3" "$include" "$scratch/order" || said=$(cat "$scratch/said")
    case $2:$said in
      c:accepted) ;;
      c++:*'include plugin/zvisp_plugin.h before command_setting.h'*) ;;
      *) fail "$1 -std=$3, $first first: $said" ;;
    esac
  done
}
each_language wrong_order

# And the other way round: a source of a plug-in cannot use what constructs records.
printf '#include "plugin/zvisp_plugin.h"\n#include "plugin/zeroed.h"\n' >"$scratch/order"
for compiler in $cxx_compilers; do
  ! compile "$compiler" c++ c++20 "$include" "$scratch/order" || fail "$compiler accepts zeroed.h"
  grep -q 'left their constructors out' "$scratch/said" || fail "$compiler: $(cat "$scratch/said")"
done

# Older than C++11: one line says it.
for compiler in $cxx_compilers; do
  ! "$compiler" -x c++ -std=c++98 -I"$include" -c "$scratch/alone" -o "$scratch/object" \
    2>"$scratch/said" || fail "$compiler -std=c++98 accepts the header"
  grep -q 'need C++11 or later' "$scratch/said" || fail "$compiler: $(cat "$scratch/said")"
done
echo "The header compiles alone, and its checks of the layout hold."
