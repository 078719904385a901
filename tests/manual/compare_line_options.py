#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the options of zvisp-line(1) with those that each command's --help lists.

    compare_line_options.py ZVISP_LINE SOURCE_DIR
"""
import pathlib
import re
import subprocess
import sys

COMMANDS = (["plan"], ["run"], ["readback"], ["check-plugin"], ["batch"], ["job", "init"],
            ["journal", "show"], ["journal", "doctor"], ["journal", "resolve"])


def main():
    line, source = sys.argv[1], pathlib.Path(sys.argv[2])
    helped = set()
    for command in COMMANDS:
        text = subprocess.run([line, *command, "--help"], check=True, capture_output=True,
                              text=True).stdout
        helped |= set(re.findall(r"^  --([a-z-]+)", text, re.MULTILINE))
    page = (source / "docs/zvisp-line.1").read_text()
    options = page[page.index(".Sh OPTIONS"):page.index(".Sh STATES")]
    told = set()
    for item in re.findall(r"^\.It (Fl .*)$", options, re.MULTILINE):
        told |= set(re.findall(r"Fl -([a-z-]+)", item))
    if len(helped) < 15 or helped != told:
        sys.exit(f"only in --help: {sorted(helped - told)}; only in the page: "
                 f"{sorted(told - helped)}")


main()
