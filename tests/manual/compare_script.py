#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_script.py SOURCE-DIR: the README and the manual page quote examples/flash-one.sh as it
is, without its comments."""
import pathlib
import sys


def quoted(page):
    """The page as it is shown, as far as the lines of a script need it."""
    for escape, character in ((r"\e", "\\"), (r"\(aq", "'"), (r"\-", "-")):
        page = page.replace(escape, character)
    return page


def main(source_dir):
    root = pathlib.Path(source_dir)
    lines = [line for line in (root / "examples/flash-one.sh").read_text().splitlines()
             if not line.startswith("#")]
    script = "\n" + "\n".join(lines) + "\n"
    pages = {"README.md": (root / "README.md").read_text(),
             "docs/zvisp.1": quoted((root / "docs/zvisp.1").read_text())}
    missing = [name for name, text in pages.items() if script not in text]
    for name in missing:
        print(f"{name} does not quote these lines of examples/flash-one.sh:{script}")
    sys.exit(bool(missing) or len(lines) != 5)


main(sys.argv[1])
