#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures how strong the tests are: breaks src/ in one place at a time and runs the tests.

Works on a copy of the tree in a scratch directory. The places are drawn with a fixed seed, spread
over the files by size, kinds of change evenly within a file. A mutant is caught when a test fails,
crashes or hangs; one that does not compile is replaced by another. Mutants that cannot change
behaviour are listed in scripts/mutants-equivalent.txt and left out of the score.

Exits with 1 when the score is below the floor.
"""
import argparse
import difflib
import os
import pathlib
import random
import re
import resource
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["base", "plugin", "settings", "firmware", "cmdline", "app"]
# Headers that hold code; the others only declare, and their values are proved at compile time.
HEADERS = {"export.h", "zeroed.h", "profile_stream.h", "profile_reader.h", "profile_edit.h",
           "profile_writer.h", "option_table.h"}
NOT_BUILT_HERE = {"linux": "process_path_macos.cpp", "darwin": "process_path_linux.cpp"}
UNIT_SECONDS, E2E_SECONDS, BUILD_SECONDS = 60, 300, 900
MEMORY_LIMIT = 8 << 30  # of a mutant that grows without end

FLIPS = {
    " == ": " != ", " != ": " == ", " < ": " <= ", " > ": " >= ", " <= ": " < ", " >= ": " > ",
    " && ": " || ", " || ": " && ", " + ": " - ", " - ": " + ", " | ": " & ", " & ": " | ",
    " += ": " -= ", " |= ": " &= ", "++": "--", "true": "false", "false": "true",
}
SIGNS = "|".join(re.escape(key) for key in FLIPS if key[0] in " +")
FLIP = re.compile(SIGNS + r"|\b(?:true|false)\b")
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9a-fA-F]+|\d+)(?=[uUlLz]*\b)(?![\w.]*[.'])")
TEXT = re.compile(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)+\'')
CONDITION = re.compile(r"\b(?:if|while) \(([^;{}]+)\)(?= \{$| return\b| continue;| break;)")
STATEMENT = re.compile(r"^( +)(?!return\b|else\b|case\b|using\b|delete\b)"
                       r"((?:\+\+|--)?\*?[\w.:>\-\[\]]+(?:\(.*\)| [-+|&^]?= .*)?;)$")
TWO_ARGUMENTS = re.compile(r"(?<=\w)\(([a-z]\w*), ([a-z]\w*)\)")
PASSIVE = re.compile(r"^\s*(//|#|using |namespace|template|static_assert|typedef|class |struct )")


def flip_operator(line, code):
    for match in FLIP.finditer(code):
        yield line[:match.start()] + FLIPS[match.group()] + line[match.end():]


def change_number(line, code):
    for match in NUMBER.finditer(code):
        changed = int(match.group(), 0) + 1 if match.group() != "0" else 1
        yield line[:match.start()] + str(changed) + line[match.end():]


def change_text(line, _code):
    for match in TEXT.finditer(line):
        quote = match.group()[0]
        changed = '"#' + match.group()[1:] if quote == '"' else "'#'"
        yield line[:match.start()] + changed + line[match.end():]


def negate_condition(line, code):
    for match in CONDITION.finditer(code):
        start, end = match.span(1)
        yield line[:start] + "!(" + line[start:end] + ")" + line[end:]


def drop_statement(line, code):
    match = STATEMENT.match(code)
    if match:
        yield f"{match.group(1)};  // {match.group(2)}"


def swap_arguments(line, code):
    for match in TWO_ARGUMENTS.finditer(code):
        first, second = match.groups()
        if first != second:
            yield line[:match.start()] + f"({second}, {first})" + line[match.end():]


KINDS = [flip_operator, change_number, change_text, negate_condition, drop_statement, swap_arguments]


def mutants_of(path):
    """All mutants of a file as (line number, changed line), by kind."""
    by_kind = {kind: [] for kind in KINDS}
    whole = True  # the line begins a statement
    for number, line in enumerate(path.read_text().splitlines()):
        # Texts and comments are blanked for the kinds that look at code.
        code = TEXT.sub(lambda match: "_" * len(match.group()), line)
        code = re.sub(r"//.*", lambda match: " " * len(match.group()), code).rstrip()
        if not code or PASSIVE.match(line):
            continue
        for kind in KINDS:
            if kind is drop_statement and not whole:
                continue
            live = line[:len(code)]
            by_kind[kind] += [(number, text + line[len(code):]) for text in kind(live, code)]
        whole = code.endswith((";", "{", "}", ":"))
    return by_kind


def in_random_order(by_kind, rng):
    """Takes one of each kind in turn, so that no kind drowns the others."""
    piles = [rng.sample(pile, len(pile)) for pile in by_kind.values() if pile]
    while piles:
        rng.shuffle(piles)
        for pile in piles:
            yield pile.pop()
        piles = [pile for pile in piles if pile]


class Tree:
    """The copy that is broken, built and tested."""

    def __init__(self, scratch):
        self.source = scratch
        self.build = scratch / "build"
        # Copies are new files to the build, so nothing of an earlier mutant stays.
        shutil.copytree(ROOT, self.source, ignore=shutil.ignore_patterns("build", ".git"),
                        symlinks=True, dirs_exist_ok=True, copy_function=shutil.copy)
        # Mutants are built far more often than they run.
        lists = self.source / "src" / "CMakeLists.txt"
        lists.write_text("add_compile_options(-O0 -w)\n" + lists.read_text())
        command = ["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build,
                   "-DZVISP_BUILD_TESTS=ON"]
        if shutil.which("ccache"):
            command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        if shutil.which("ld.lld") and sys.platform == "linux":
            command.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)

    def make(self, target, jobs):
        """False when it does not compile."""
        done = subprocess.run(["ninja", "-C", self.build, f"-j{jobs}", target], check=False,
                              timeout=BUILD_SECONDS, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
        return done.returncode == 0

    def passes(self, target):
        limit = E2E_SECONDS if target == "e2e" else UNIT_SECONDS
        program = self.build / "tests" / target
        try:
            done = subprocess.run(
                [program, "--gtest_fail_fast", "--gtest_brief=1"], timeout=limit, check=False,
                cwd=self.build, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL, preexec_fn=lambda: resource.setrlimit(
                    resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT)))
        except subprocess.TimeoutExpired:
            return False
        return done.returncode == 0

    def verdict(self, folder, jobs):
        """The test program that fails, "survived", or None when the mutant does not compile."""
        targets = [f"unit_{name}" for name in FOLDERS[FOLDERS.index(folder):]] + ["e2e"]
        for target in targets:
            if not self.make(target, jobs):
                return None
            if not self.passes(target):
                return target
        return "survived"


def quotas(files, count):
    """Mutants by file: by size, none forgotten."""
    lines = {path: len((ROOT / path).read_text().splitlines()) for path in files}
    total = sum(lines.values())
    return {path: max(1, round(count * lines[path] / total)) for path in files}


def source_files(folders):
    for folder in folders:
        for path in sorted((ROOT / "src" / folder).iterdir()):
            code = path.suffix == ".cpp" or path.name in HEADERS
            if code and path.name != NOT_BUILT_HERE.get(sys.platform):
                yield path.relative_to(ROOT)


def known_equivalents():
    """Pairs of file and changed line, without what comes after the sign #."""
    text = (ROOT / "scripts" / "mutants-equivalent.txt").read_text()
    rows = [row.split(": ", 1) for row in text.splitlines() if row and not row.startswith("#")]
    return {(path, line.strip()) for path, line in rows}


class Session:
    def __init__(self, tree, jobs, seed):
        self.tree, self.jobs, self.seed = tree, jobs, seed
        self.equivalents = known_equivalents()
        self.caught, self.survived, self.not_compiled, self.equal = 0, [], 0, 0

    def try_file(self, path, quota):
        place = self.tree.source / path
        original = place.read_text()
        lines = original.splitlines(keepends=True)
        rng = random.Random(f"{self.seed} {path}")
        for number, changed in in_random_order(mutants_of(place), rng):
            if quota == 0:
                break
            if (str(path), changed.strip()) in self.equivalents:
                self.equal += 1
                continue
            place.write_text("".join(lines[:number] + [changed + "\n"] + lines[number + 1:]))
            quota -= self.judge(path, number, original, place.read_text())
        place.write_text(original)

    def judge(self, path, number, before, after):
        """1 when the mutant counts."""
        verdict = self.tree.verdict(path.parts[1], self.jobs)
        print(f"{path}:{number + 1}: {verdict or 'does not compile'}", flush=True)
        if verdict is None:
            self.not_compiled += 1
            return 0
        if verdict == "survived":
            diff = difflib.unified_diff(before.splitlines(), after.splitlines(),
                                        f"a/{path}", f"b/{path}", lineterm="", n=1)
            self.survived.append("\n".join(diff))
            print(self.survived[-1], flush=True)
        else:
            self.caught += 1
        return 1

    def report(self):
        counted = self.caught + len(self.survived)
        score = 100 * self.caught / counted if counted else 0
        print(f"\n{counted} mutants: {self.caught} caught, {len(self.survived)} survived; "
              f"left out: {self.equal} without effect, {self.not_compiled} that do not compile")
        print(f"score {score:.1f} %")
        return score


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--count", type=int, default=240, help="mutants over all folders")
    parser.add_argument("--folders", nargs="+", default=FOLDERS, choices=FOLDERS)
    parser.add_argument("--seed", default="1")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--floor", type=float, default=95, help="score to reach, in per cent")
    parser.add_argument("--scratch", type=pathlib.Path, default=ROOT / "build" / "mutants")
    return parser.parse_args()


def main():
    options = parse_arguments()
    options.scratch.mkdir(parents=True, exist_ok=True)
    tree = Tree(options.scratch.resolve())
    quota = quotas(list(source_files(FOLDERS)), options.count)
    targets = [f"unit_{folder}" for folder in FOLDERS] + ["e2e"]
    for target in targets:
        if not tree.make(target, options.jobs) or not tree.passes(target):
            sys.exit(f"{target} fails without any change")
    session = Session(tree, options.jobs, options.seed)
    for path in source_files(options.folders):
        session.try_file(path, quota[path])
    return 0 if session.report() >= options.floor else 1


if __name__ == "__main__":
    sys.exit(main())
