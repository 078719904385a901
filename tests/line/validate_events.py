#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""validate_events.py SCHEMA DIRECTORY: every line that the tests have kept is an event by the
schema, and has no field that the schema does not know. Fails when a type of event was never seen."""
import json
import os
import pathlib
import re
import sys

try:
    from jsonschema import Draft202012Validator
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(1 if os.environ.get("CI") else 77)


# Numbers, times and names of runs that are right, each with one in place of all. A wrong
# one stays in its line and is found by the schema.
UUID = "01900000-0000-7000-8000-000000000000"
STAMPS = [
    (re.compile(r'"(mono_ms|seq|elapsed_ms|duration_ms)":[0-9]+(?=[,}])'), r'"\1":0'),
    (re.compile(r'"percent":(?:[0-9]|[1-9][0-9]|100)(?=[,}])'), '"percent":0'),
    (re.compile(r'"time":"[0-9]{4}(?:-[0-9]{2}){2}T[0-9]{2}(?::[0-9]{2}){2}\.[0-9]{3}Z"'),
     '"time":"2026-01-01T00:00:00.000Z"'),
    (re.compile(r'"(session|run)":"[0-9a-f]{8}-[0-9a-f]{4}-7[0-9a-f]{3}-[89ab][0-9a-f]{3}'
                r'-[0-9a-f]{12}"'), rf'"\1":"{UUID}"'),
]


def without_stamps(line):
    """Lines that differ in nothing else become one, because a plug-in may report progress 100,000
    times, and each validation takes milliseconds."""
    for pattern, text in STAMPS:
        line = pattern.sub(text, line)
    return line


def strict(schema):
    """The schema without room for the fields of later versions."""
    schema["unevaluatedProperties"] = False
    return schema


def complaints(validator, line):
    try:
        event = json.loads(line)
    except ValueError as error:
        return None, [str(error)]
    return event.get("type"), [error.message for error in validator.iter_errors(event)]


def main(schema_file, directory):
    schema = json.loads(pathlib.Path(schema_file).read_text())
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(strict(schema))
    lines, failures, seen, checked = 0, 0, set(), set()
    for file in sorted(pathlib.Path(directory).glob("*.jsonl")):
        for number, line in enumerate(file.read_text().splitlines(), 1):
            lines += 1
            line = without_stamps(line)
            if line in checked:
                continue
            checked.add(line)
            kind, found = complaints(validator, line)
            seen.add(kind)
            for text in found:
                failures += 1
                print(f"{file.name}:{number}: {text}\n  {line}")
    for kind in sorted(set(schema["properties"]["type"]["enum"]) - seen):
        failures += 1
        print(f"no test has seen an event of type {kind}")
    print(f"{lines} lines, {len(checked)} of them different, {failures} complaints")
    sys.exit(failures != 0)


main(*sys.argv[1:])
