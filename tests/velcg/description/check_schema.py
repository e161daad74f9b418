#!/usr/bin/env python3
"""Validates model descriptions against the JSON Schema of the format.

usage: check_schema.py SCHEMA DESCRIPTION...

A DESCRIPTION ending in .md is a page whose ```json blocks are checked.
Prints each description that fails with the place and reason; exit status
0 when all validate, 1 when one does not, 2 when the checker cannot run."""
import json
import re
import sys

try:
    from jsonschema import Draft202012Validator
except ImportError:
    print("check_schema.py: the Python module jsonschema is missing (Debian: python3-jsonschema)", file=sys.stderr)
    sys.exit(2)


def main(argv):
    if len(argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    with open(argv[1], encoding="utf-8") as f:
        schema = json.load(f)
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(schema)
    failed = 0
    for path, document in documents(argv[2:]):
        for error in sorted(validator.iter_errors(document), key=lambda e: list(e.absolute_path)):
            pointer = "".join("/" + str(p) for p in error.absolute_path)
            print(f"{path}: {pointer or '/'}: {error.message}")
            failed = 1
    return failed


def documents(paths):
    for path in paths:
        with open(path, encoding="utf-8") as f:
            text = f.read()
        if not path.endswith(".md"):
            yield path, json.loads(text)
            continue
        blocks = re.findall(r"^```json\n(.*?)^```", text, re.S | re.M)
        if not blocks:
            raise SystemExit(f"{path}: no ```json block")
        for n, block in enumerate(blocks, 1):
            yield f"{path} (json block {n})", json.loads(block)


if __name__ == "__main__":
    sys.exit(main(sys.argv))
