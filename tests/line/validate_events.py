#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""validate_events.py SCHEMA DIRECTORY: every line that the tests have kept is an event by the
schema, and has no field that the schema does not know. Fails when a type of event was never seen."""
import json
import os
import pathlib
import sys

try:
    from jsonschema import Draft202012Validator
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(1 if os.environ.get("CI") else 77)


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
    lines, failures, seen = 0, 0, set()
    for file in sorted(pathlib.Path(directory).glob("*.jsonl")):
        for number, line in enumerate(file.read_text().splitlines(), 1):
            kind, found = complaints(validator, line)
            lines += 1
            seen.add(kind)
            for text in found:
                failures += 1
                print(f"{file.name}:{number}: {text}\n  {line}")
    for kind in sorted(set(schema["properties"]["type"]["enum"]) - seen):
        failures += 1
        print(f"no test has seen an event of type {kind}")
    print(f"{lines} lines checked, {failures} complaints")
    sys.exit(failures != 0)


main(*sys.argv[1:])
