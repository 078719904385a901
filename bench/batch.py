#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Times batches of zvisp-line on simulated displays: sixteen places next to one and next to zvisp
started by a shell, the parent's own processor time, and how long a big record delays `once`.

  scripts/bench.sh batch [BUILD_DIRECTORY [ROUNDS]]    build and 11 by default

What is compared takes turns. The figures are medians."""
import hashlib
import json
import os
import pathlib
import statistics
import sys
import tempfile
import time
import uuid

BANK = 65536
PLACES = 16
RUNS = 100_000


class Floor:
    """Sixteen simulated displays, a firmware of one bank and a job for it."""

    def __init__(self, build, scratch):
        self.build = build
        self.scratch = scratch
        self.line = str(build / "bin/zvisp-line")
        self.firmware = scratch / "fw.bin"
        self.firmware.write_bytes(os.urandom(BANK))
        self.env = dict(os.environ, ZVISP_SIM_DIR=str(scratch / "displays"),
                        ZVISP_LINE_LOCK_DIR=str(scratch / "locks"))
        (scratch / "locks").mkdir()
        self.job("job.toml")

    def job(self, name, unit=""):
        sha = hashlib.sha256(self.firmware.read_bytes()).hexdigest()
        text = f"""schema = 1
name = "panel"
[unit]
pattern = "ZP[0-9]+"
{unit}
[firmware]
"fw.bin" = {{ sha256 = "{sha}", bytes = {BANK} }}
[[step]]
name = "program"
zvisp = ["--isp", "--fw1", "fw.bin", "--bank1", "0"]
"""
        for place in range(1, PLACES + 1):
            text += f'[[place]]\nname = "P{place}"\ncomm = {place}\n'
        (self.scratch / name).write_text(text)

    def words(self, places, data="data", job="job.toml"):
        words = [self.line, "batch", "--quiet", "--data", str(self.scratch / data)]
        for place in range(1, PLACES + 1):
            words += ["--unit", f"P{place}=ZP{place}"] if place <= places else [
                "--skip", f"P{place}"]
        return words + [str(self.scratch / job)]


def run(words, env, status=0):
    """Seconds of elapsed time, and of processor time of the process alone, without children."""
    # What a refusal says is not wanted here.
    quiet = [(os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)] if status else []
    start = time.monotonic()
    pid = os.posix_spawn(words[0], words, env, file_actions=quiet)
    os.waitid(os.P_PID, pid, os.WEXITED | os.WNOWAIT)
    elapsed = time.monotonic() - start
    # The clock of a process counts all its threads, and no other process. It is there until
    # somebody collects the exit status.
    own = time.clock_gettime((~pid << 3) | 2)
    ended = os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])
    if ended != status:
        sys.exit(f"{words} ended with {ended}")
    return elapsed, own


def ms(seconds):
    return f"{seconds * 1000:.1f} ms"


def medians(rounds, **what):
    """Calls each of them once a round; the median of what each returned."""
    results = {name: [] for name in what}
    for _ in range(rounds):
        for name, call in what.items():
            results[name].append(call())
    return {name: statistics.median(values) for name, values in results.items()}


def sixteen_places(floor, rounds):
    zvisp = str(floor.build / "bin/zvisp")
    loop = (f'for i in $(seq {PLACES}); do "{zvisp}" --isp --fw1 "{floor.firmware}" --bank1 0 '
            '--comm "$i" >/dev/null & done; wait')
    took = medians(
        rounds,
        one=lambda: run(floor.words(1), floor.env)[0],
        sixteen=lambda: run(floor.words(PLACES), floor.env)[0],
        shell=lambda: run(["/bin/sh", "-c", loop], floor.env)[0])
    limit = 1.5 * took["one"] + took["shell"]
    print(f"one place {ms(took['one'])}, {PLACES} zvisp of a shell {ms(took['shell'])}")
    print(f"{PLACES} places {ms(took['sixteen'])}, at most {ms(limit)}: "
          f"ratio {took['sixteen'] / limit:.2f}")


def parents_time(floor, rounds):
    took = medians(rounds, **{str(places): lambda places=places: run(
        floor.words(places), floor.env)[1] for places in (1, 4, PLACES)})
    for places, seconds in took.items():
        print(f"processor time of the parent, {places} places: {ms(seconds)}, "
              f"{ms(seconds / int(places))} a place")
    print(f"each further place: {ms((took['4'] - took['1']) / 3)} from 1 to 4, "
          f"{ms((took[str(PLACES)] - took['4']) / (PLACES - 4))} from 4 to {PLACES}")


def big_record(floor, data):
    """The events of a real run, again and again under other names."""
    run(floor.words(1, data), floor.env)
    journal = next((floor.scratch / data / "journal").glob("*.jsonl"))
    lines = [line for line in journal.read_text().splitlines() if '"run"' in line]
    known = json.loads(lines[0])["run"]
    with open(journal.with_name("2020-01-01.jsonl"), "w", encoding="utf-8") as record:
        for number in range(RUNS):
            text = "\n".join(lines) + "\n"
            record.write(text.replace(known, str(uuid.uuid4())).replace(
                '"unit":"ZP1"', f'"unit":"ZP{number + 1000}"'))
    return journal.with_name("2020-01-01.jsonl")


def big_record_delays(floor, rounds):
    floor.job("once.toml", "once = true")
    run(floor.words(1, "small"), floor.env)
    record = big_record(floor, "big")
    index = record.with_name("units.index")
    size = record.stat().st_size

    def refused(data):
        return run(floor.words(1, data, "once.toml"), floor.env, 2)[0]

    def missing():
        index.unlink()
        return refused("big")

    def stale():
        # Made when the last 1000 runs were not there yet.
        whole = record.read_bytes()
        cut = whole.rfind(b"\n", 0, size - size // 100) + 1
        os.truncate(record, cut)
        index.unlink()
        refused("big")
        with open(record, "ab") as file:
            file.write(whole[cut:])
        return refused("big")

    refused("big")
    took = medians(rounds, small=lambda: refused("small"), fresh=lambda: refused("big"))
    took.update(medians(3, stale=stale, missing=missing))
    print(f"once, with a record of one run: {ms(took['small'])}")
    for name in ("fresh", "stale", "missing"):
        print(f"once, with {RUNS} runs in {size // 1_000_000} MB and an index that is {name}: "
              f"{ms(took[name])}, {ms(took[name] - took['small'])} more")


def main():
    build = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build").resolve()
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 11
    print(f"load {os.getloadavg()[0]:.2f}, {os.cpu_count()} processors")
    with tempfile.TemporaryDirectory(prefix="zvisp-bench.") as scratch:
        floor = Floor(build, pathlib.Path(scratch))
        sixteen_places(floor, rounds)
        parents_time(floor, rounds)
        big_record_delays(floor, rounds)
    print(f"load {os.getloadavg()[0]:.2f}")


if __name__ == "__main__":
    main()
