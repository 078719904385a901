#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_line_completions.py ZVISP-LINE SOURCE-DIR: the completions of each command name exactly the
options that its --help names."""
import pathlib
import re
import subprocess
import sys

COMMANDS = ("plan", "run", "readback", "batch", "job init", "check-plugin",
            "journal show", "journal doctor", "journal resolve")


def from_help(tool, command):
    text = subprocess.check_output([tool, *command.split(), "--help"], text=True)
    return set(re.findall(r"^  --([\w-]+)", text, re.M))


def bash_list(text, name):
    return set(re.findall(r"--([\w-]+)", re.search(rf"local {name}='([^']*)'", text).group(1)))


def from_bash(text, command):
    first, *rest = command.split()
    block = text[text.index("local words"):]
    line = re.search(rf"^\s*{rest[0] if rest else first + '-[*]'}\)\s+words=(.*?);;", block,
                     re.M | re.S)
    words = line.group(1)
    found = set(re.findall(r"--([\w-]+)", words))
    for name in ("common", "unit"):
        if f"${name}" in words:
            found |= bash_list(text, name)
    return found


def from_zsh(text, command):
    lists = {name: set(re.findall(r"'\*?--([\w-]+)\[", body)) for name, body in
             re.findall(r"^(\w+)=\((.*?)\)$", text, re.M | re.S)}
    name = command.split()[-1]
    words = re.search(rf"^\s*{name}\)\s+_arguments (.*?);;", text, re.M | re.S).group(1)
    found = set(re.findall(r"'\*?--([\w-]+)\[", words))
    for used in re.findall(r"\$(\w+)\[@\]", words):
        found |= lists[used]
    return found


def from_fish(text, command):
    name, found = command.replace(" ", "-"), set()
    everything = re.search(r"__zvisp_line_all (.*)", text).group(1)
    for commands, option in re.findall(r"'__zvisp_line_uses ([^']*)' -l ([\w-]+)", text):
        if name in commands.replace("$__zvisp_line_all", everything).split():
            found.add(option)
    return found


def main(tool, source):
    read = lambda name: pathlib.Path(source, name).read_text()
    failures, every = 0, set()

    def compare(where, found, wanted):
        nonlocal failures
        for option in sorted(found ^ wanted):
            failures += 1
            print(f"{where}: {'lacks' if option in wanted else 'has'} --{option}")

    for command in COMMANDS:
        wanted = from_help(tool, command)
        every |= wanted
        for name, reader in (("zvisp-line.bash", from_bash), ("_zvisp-line", from_zsh),
                             ("zvisp-line.fish", from_fish)):
            compare(f"completions/{name}, {command}", reader(read("completions/" + name), command),
                    wanted)
    if len(every) < 10:
        sys.exit("--help names hardly any option")
    sys.exit(failures != 0)


main(*sys.argv[1:])
