#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_messages.py SOURCE-DIR: every message in src/ has an item among the diagnostics of the
manual page, every item there is a message in src/, and no item is explained twice.

A message is a narrow text with a letter and a blank in it, which leaves out the names of files,
options and symbols. Values count as "..." on both sides.
"""
import pathlib
import re
import sys

TOKEN = re.compile(r"""//[^\n]*|/\*.*?\*/|(?P<wide>L?)"(?P<text>(?:[^"\\\n]|\\.)*)"|'(?:[^'\\]|\\.)+'"""
                   r"""|(?P<word>\w+)|\S""", re.S)
DIRECTIVE = re.compile(r"^[ \t]*#(?:\\\n|.)*", re.M)
VALUE = re.compile(r"%[0-9]*(?:z|l|ll)?[a-zA-Z]")
ESCAPES = {r"\n": "\n", r"\r": "\r", r"\"": '"', r"\\": "\\", r"\033": "\033"}


def texts(source):
    """The narrow string literals outside of static_assert, adjacent ones joined."""
    joined, depth, asserting = None, 0, None
    for token in TOKEN.finditer(DIRECTIVE.sub("", source)):
        if token[0].startswith(("//", "/*")):
            continue
        if token["text"] is not None:
            if not token["wide"] and asserting is None:
                joined = (joined or "") + token["text"]
            continue
        if joined is not None:
            yield joined
            joined = None
        depth += (token[0] == "(") - (token[0] == ")")
        if token["word"] == "static_assert":
            asserting = depth
        elif asserting is not None and token[0] == ")" and depth == asserting:
            asserting = None


def plain(literal):
    """The text as an operator sees it, without colours, with "..." for each value."""
    for escape, character in ESCAPES.items():
        literal = literal.replace(escape, character)
    literal = re.sub("\033\\[[0-9]*m", "", literal)
    return re.sub(r"(?:\.*%s[.]?)+" % VALUE.pattern, "...", literal)


def messages(source_dir):
    """The message texts, each with the file that prints it."""
    found = {}
    for path in sorted(pathlib.Path(source_dir, "src").rglob("*")):
        if path.suffix not in (".cpp", ".h", ".inc"):
            continue
        for message in map(plain, texts(path.read_text())):
            words = message.replace("...", "").strip()
            if re.search("[A-Za-z]{2}", words) and (" " in words or message.endswith("\n")):
                found.setdefault(message, path.relative_to(source_dir))
    return found


def items(page):
    section = page[page.index("\n.Sh DIAGNOSTICS"):]
    section = section[:section.find("\n.Sh ", 1)]
    for escape, character in ((r"\(aq", "'"), (r"\-", "-"), (r"\&", ""), (r"\(dq", '"')):
        section = section.replace(escape, character)
    return re.findall(r'^\.It "(.*)"$', section, re.M), section


def covers(item, message):
    """Whether the item shows the message. A text without a newline is a part of one."""
    pieces = ".*?".join(re.escape(piece) for piece in message.strip().split("..."))
    whole = re.fullmatch if message.endswith("\n") else re.search
    return whole(pieces, item, re.S) is not None


def main(source_dir):
    page = pathlib.Path(source_dir, "docs/zvisp.1").read_text()
    heads, section = items(page)
    said = messages(source_dir)
    if len(said) < 50:
        sys.exit(f"only {len(said)} messages were found in src/")
    words = " ".join(section.split())
    wrong = [f"docs/zvisp.1 lacks the message of {path}: {message!r}" for message, path in said.items()
             if not any(covers(head, message) for head in heads)
             and f".Dq {message} " not in words]
    wrong += [f"docs/zvisp.1 has a message that src/ does not: {head}" for head in heads
              if not any(covers(head, message) for message in said)]
    wrong += [f"docs/zvisp.1 explains twice: {head}" for head in sorted(set(heads))
              if heads.count(head) > 1]
    print("\n".join(wrong) or f"{len(said)} messages, {len(heads)} items")
    sys.exit(bool(wrong))


main(sys.argv[1])
