#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_options.py TABLE-PRINTER SOURCE-DIR: the manual and the completions name exactly the
options of the tool's table, and agree with it on which of them take a value. Each
option that the other documents name is in the table or on the page of zvisp-line, which another
test compares with its program."""
import pathlib
import re
import subprocess
import sys


def from_manual(text):
    """The options of all list items; an item may run over several lines between Xo and Xc."""
    heads, inside = [], False
    for line in text.splitlines():
        inside = inside or line.startswith(".It Xo")
        if inside or line.startswith(".It Fl"):
            heads.append(line)
        inside = inside and not line.startswith(".Xc")
    found = re.findall(r"Fl -(\w+)( Ar)?", "\n".join(heads))
    return [(name, "value" if value else "alone") for name, value in found]


def from_bash(text):
    found = []
    for group, kind in (("actions", "alone"), ("switches", "alone"), ("files", "value"),
                        ("values", "value")):
        words = re.search(rf"local {group}='([^']*)'", text).group(1)
        found += [(word[2:], kind) for word in words.split()]
    return found


def from_zsh(text):
    return [(name, "value" if value else "alone")
            for name, value in re.findall(r"'--(\w+)(=?)\[", text)]


def from_fish(text):
    return [(name, "value" if kind in ("-r", "-x") else "alone")
            for name, kind in re.findall(r"^complete -c zvisp -l (\w+) (-\w)", text, re.M)]


MISTYPED_ON_PURPOSE = {"bnak", "ws"}


def unknown_options(text, known):
    """The options in a document's commands and code words that the tool does not have."""
    commands = re.findall(r"^(?:\$ )?(?:zvisp|\S*flash-one\.sh) .*$", text, re.M)
    named = re.findall(r"`(--\w+)", text) + re.findall(r"(?<=\s)--\w+", "\n".join(commands))
    return sorted({name[2:] for name in named} - known - MISTYPED_ON_PURPOSE)


def main(printer, source):
    table = [tuple(line.split())
             for line in subprocess.check_output([printer], text=True).splitlines()]
    if len(table) < 2:
        sys.exit("the table is empty")
    failed = False
    for name, read in (("docs/zvisp.1", from_manual), ("completions/zvisp.bash", from_bash),
                       ("completions/_zvisp", from_zsh), ("completions/zvisp.fish", from_fish)):
        found = read(pathlib.Path(source, name).read_text())
        for option in sorted(set(table) - set(found)):
            print(f"{name}: lacks --{option[0]} ({option[1]})")
        for option in sorted(set(found) - set(table)):
            print(f"{name}: has --{option[0]} ({option[1]}), which the table does not")
        for option in sorted({entry for entry in found if found.count(entry) > 1}):
            print(f"{name}: names --{option[0]} twice")
        failed = failed or sorted(found) != sorted(table)
    of_line = dict(from_manual(pathlib.Path(source, "docs/zvisp-line.1").read_text())).keys()
    for name in ("README.md", "docs/glossary.md", "docs/signing.md", "docs/macos.md"):
        known = dict(table).keys() | of_line
        for option in unknown_options(pathlib.Path(source, name).read_text(), known):
            print(f"{name}: names --{option}, which no program has")
            failed = True
    sys.exit(failed)


main(*sys.argv[1:])
