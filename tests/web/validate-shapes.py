#!/usr/bin/env python3
"""Holds JSON files to the shapes that clients rely on.

usage: validate-shapes.py SCHEMA FOLDER

Each file in FOLDER is named after a definition of the schema: "state.json"; "events.hello.json" for
one inside a definition; with anything behind a hyphen, "tree-empty.json". Prints what does not fit
and exits 1; exits 2 where there is nothing to look at.
"""

import json
import pathlib
import sys

import jsonschema


def definition_of(schema, name):
    parts = name.split("-")[0].split(".")
    found = schema["definitions"][parts[0]]
    for part in parts[1:]:
        found = found["properties"][part]
    return found


def main():
    schema = json.loads(pathlib.Path(sys.argv[1]).read_text())
    files = sorted(pathlib.Path(sys.argv[2]).glob("*.json"))
    faults = 0
    for file in files:
        shape = {"definitions": schema["definitions"], **definition_of(schema, file.stem)}
        for error in jsonschema.Draft7Validator(shape).iter_errors(json.loads(file.read_text())):
            print(f"{file.name}: {error.json_path}: {error.message}")
            faults += 1
    return 2 if not files else 1 if faults else 0


sys.exit(main())
