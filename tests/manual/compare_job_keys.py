#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_job_keys.py KEY-PRINTER SOURCE-DIR: zvisp-line(1) explains exactly the keys that the
reader of jobs knows, each once, and says of each what it takes and what counts without it."""
import pathlib
import re
import subprocess
import sys


def main(printer, source):
    known = subprocess.check_output([printer], text=True).split()
    page = pathlib.Path(source, "docs/zvisp-line.1").read_text()
    section = page[page.index("\n.Sh JOB FILES"):]
    section = section[:section.index("\n.Sh ", 1)]
    explained, vague = [], []
    for names, takes in re.findall(r"^\.It Li (.*?)(?: Pq (.*))?$", section, re.M):
        explained += names.split(" , ")
        if not takes:
            vague.append(names)
    wrong = [f"lacks {name}" for name in known if name not in explained]
    wrong += [f"has {name}, which no job has" for name in explained if name not in known]
    wrong += [f"explains {name} twice" for name in set(explained) if explained.count(name) > 1]
    wrong += [f"does not say what {names} takes" for names in vague]
    print("\n".join(wrong) or f"{len(known)} keys")
    sys.exit(bool(wrong) or len(known) < 20)


main(*sys.argv[1:])
