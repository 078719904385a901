#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs the lines of docs/signing.md as they stand there, in order, in an empty directory, and
# compares how each run of the tool ended.
# Usage: walkthrough_test.sh <executable> <docs/signing.md>
set -eu

tool=$(realpath "$1")
page=$(realpath "$2")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin" "$scratch/work"

# In the tool's place is a script that runs it and notes the action and its result.
cat > "$scratch/bin/zvisp" <<END
#!/bin/sh
status=0
"$tool" "\$@" > "$scratch/output" || status=\$?
cat "$scratch/output"
result=\$(sed -E -n 's/.*(Success|Error Code: 0x[0-9A-F]*|argument is illegal).*/\1/p' "$scratch/output")
echo "\$1 \$2 \$3 \$4 \$5: \$result" >> "$scratch/results"
exit \$status
END
chmod +x "$scratch/bin/zvisp"

awk '/^```sh$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$page" > "$scratch/lines.sh"
# Who leaves out the line that sets the variable must not write into "/".
# shellcheck disable=SC2016  # the page's own text is looked for
if grep -n '\$ZVISP_SIM_DIR' "$scratch/lines.sh"; then
  echo "FAILED: a line uses the variable"
  exit 1
fi
cd "$scratch/work"
if ! PATH="$scratch/bin:$PATH" sh -eu "$scratch/lines.sh" > "$scratch/log" 2>&1; then
  cat "$scratch/log"
  echo "FAILED: a line of the walk-through did not succeed"
  exit 1
fi

cat > "$scratch/expected" <<'END'
--sign --sw --dsmode 3 --fw: Success
--verify --sw --dsmode 3 --fw: Success
--verify --sw --dsmode 3 --fw: Error Code: 0x4003
--isp --comm 1 --bank 0: Success
--isp --comm 1 --bank 0: Error Code: 0x4003
--sign --sw --dsmode 4 --fw: Success
--isp --comm 2 --bank 0: Success
--verify --sw --dsmode 4 --fw: Success
--sign --sw --dsmode 3 --fw: Success
--verify --sw --dsmode 1 --fw: Success
--sign --sw --dsmode 2 --keypair: Success
--verify --sw --dsmode 2 --keypair: Success
--sign --hw --dsmode 1 --fw: Success
END
diff "$scratch/expected" "$scratch/results" || { cat "$scratch/log"; exit 1; }
grep -q 'Signature Verified Successfully$' "$scratch/log"
grep -q 'Get Key From Flash \.\.\.$' "$scratch/log"
head -c 200000 displays/display-02.flash | cmp - fw.bin
echo "The walk-through holds."
