#!/bin/sh
# SPDX-License-Identifier: MIT
# flash-one.sh LOG OPTION...: runs zvisp once with the options and keeps its output in LOG. Ends
# with status 0 only when the run succeeded. The README and the manual page quote these lines.
log=$1; shift
zvisp "$@" >"$log" || exit
end=$(tail -c 16 "$log")
success=$(printf '\033[32mSuccess\n\033[m')
[ "$end" = "$success" ]
