#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_job_keys.py KEY-PRINTER SOURCE-DIR: zvisp-line(1) explains exactly the keys that the
reader of jobs knows, each once, and says of each what it takes and what counts without it. The job
that the page shows is a good one."""
import pathlib
import re
import subprocess
import sys


def shown_job(section):
    job = re.search(r"^schema = 1$.*?(?=^\.Ed$)", section, re.M | re.S).group(0)
    return job.replace('"..."', f'"{"0" * 64}"')


def main(printer, source):
    page = pathlib.Path(source, "docs/zvisp-line.1").read_text()
    section = page[page.index("\n.Sh JOB FILES"):]
    section = section[:section.index("\n.Sh ", 1)]
    lines = subprocess.check_output([printer], input=shown_job(section), text=True).splitlines()
    known = [line for line in lines if not line.startswith("line ")]
    explained, vague = [], []
    for names, takes in re.findall(r"^\.It Li (.*?)(?: Pq (.*))?$", section, re.M):
        explained += names.split(" , ")
        if not takes:
            vague.append(names)
    wrong = [f"lacks {name}" for name in known if name not in explained]
    wrong += [f"has {name}, which no job has" for name in explained if name not in known]
    wrong += [f"explains {name} twice" for name in set(explained) if explained.count(name) > 1]
    wrong += [f"does not say what {names} takes" for names in vague]
    wrong += [f"shows a job with a mistake: {line}" for line in lines if line not in known]
    print("\n".join(wrong) or f"{len(known)} keys")
    sys.exit(bool(wrong) or len(known) < 20)


main(*sys.argv[1:])
