#!/bin/sh
# SPDX-License-Identifier: MIT
# flash_one_test.sh TOOL RECORDING-PLUGIN SCRIPT: runs the script of the manual against everything
# that a run can do, and compares its verdict.
set -u

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/bin/PlugIn" "$scratch/runs/Success"
cp "$1" "$scratch/bin/zvisp"
plugin=$scratch/bin/PlugIn/libIsp.dylib
recording=$2
script=$3
PATH=$scratch/bin:$PATH
cd "$scratch/runs" || exit 1
head -c 70000 /dev/zero >main.bin
line=$(printf '\033[32mSuccess\n\033[m')
failed=0

# case NAME VERDICT STATUS: compares the verdict of the script (pass or fail) and its status, which
# the caller has left in `status`; "any" is every status but 0.
case_ended() {
  verdict=fail
  [ "$status" -eq 0 ] && verdict=pass
  printf '%-62s %-4s %s\n' "$1" "$verdict" "$status"
  if [ "$verdict" != "$2" ] || { [ "$3" != any ] && [ "$status" -ne "$3" ]; }; then
    echo "  WRONG: expected $2 $3; the log is:"
    cat run.log
    failed=1
  fi
}

# Runs the script with the words after the third argument. The environment of the call carries the
# wishes to the plug-in.
try() {
  name=$1 verdict_wanted=$2 status_wanted=$3
  shift 3
  status=0
  "$script" run.log "$@" 2>errors || status=$?
  case_ended "$name" "$verdict_wanted" "$status_wanted"
}

# A log of an earlier run that succeeded must not speak for a later one.
printf '%s' "$line" >run.log
cp "$recording" "$plugin"

try "success" pass 0 --isp --fw main.bin --comm 1
try "rejected: no file" fail 1 --isp --comm 1
try "rejected: a path that holds Success" fail 1 --isp --fw Success/missing.bin --comm 1
grep -q Success run.log || { echo "WRONG: the path is not in the log"; failed=1; }
try "success from a path that holds Success" pass 0 --isp --fw "$PWD/Success/../main.bin" --comm 1

export ZVISP_RECORD_RESULT_IspFlash=0x100
try "plug-in fails with 0x100, exit status 0" fail 1 --isp --fw main.bin --comm 1
zvisp --isp --fw main.bin >run.log || { echo "WRONG: 0x100 does not end with 0"; failed=1; }
export ZVISP_RECORD_PRINT="Success
"
try "the same, after printing Success" fail 1 --isp --fw main.bin --comm 1
export ZVISP_RECORD_PRINT="$line"
try "the same, after printing the whole line" fail 1 --isp --fw main.bin --comm 1
export ZVISP_RECORD_RESULT_IspFlash=0x4D
try "plug-in fails with 0x4D after printing the whole line" fail 77 --isp --fw main.bin --comm 1
unset ZVISP_RECORD_RESULT_IspFlash
for signal in 6 9 11; do
  export ZVISP_RECORD_CRASH=$signal
  try "killed by signal $signal after printing the whole line" fail any --isp --fw main.bin --comm 1
  grep -q Success run.log || { echo "WRONG: the line is not in the log"; failed=1; }
done
unset ZVISP_RECORD_PRINT
export ZVISP_RECORD_CRASH=11
try "crash" fail any --isp --fw main.bin --comm 1
if command -v timeout >/dev/null; then
  # A plug-in that never returns, and the time limit that the manual recommends.
  export ZVISP_RECORD_CRASH=19
  sed 's/^zvisp /timeout 1 zvisp /' "$script" >limited.sh
  whole=$script
  chmod +x limited.sh
  script=./limited.sh
  try "hang, with a time limit" fail 124 --isp --fw main.bin --comm 1
  script=$whole
fi
unset ZVISP_RECORD_CRASH

try "the scaler type is not a success line" fail 1 --getscalertype
"$script" missing/run.log --isp --fw main.bin 2>errors
status=$?
case_ended "the log cannot be written" fail any

rm "$plugin"
try "missing plug-in" fail 103 --isp --fw main.bin --comm 1
printf 'not a library' >"$plugin"
try "broken plug-in" fail 103 --isp --fw main.bin --comm 1
cp "$recording" "$plugin"

# The reader of the script's own output and errors is gone before the run starts; the unknown option
# makes the tool write to it.
{
  sleep 0.3
  status=0
  "$script" run.log --no-such-option --isp --fw main.bin || status=$?
  echo "$status" >status
} 2>&1 | true
status=$(cat status)
case_ended "success, the reader of a pipe gone" pass 0

[ "$failed" -eq 0 ] && echo "The verdict is right in every case."
exit "$failed"
