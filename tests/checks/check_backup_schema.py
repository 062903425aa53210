#!/usr/bin/env python3
"""Checks that what Tembra writes into a backup is what docs/backup.schema.json says, and that the
schema refuses what Tembra never writes.

Usage: check_backup_schema.py DOCS_FOLDER SAMPLE RANDOM_BACKUPS
SAMPLE is the document of the package that Tembra carries, RANDOM_BACKUPS the program that prints
documents with odd values, one a line. One line for each finding, then exit status 1.
"""

import copy
import json
import re
import subprocess
import sys
from pathlib import Path

RANDOM_DOCUMENTS = 60

NOT_TEXT = [5, True, [], {}]
NOT_INTEGER = [None, "1", True, 1.5, 32768, -32769, 65536, [], {}]
NOT_LIST = [None, {}, "", [None], [1], [[]]]
NOT_URI = [None, 5, "", "p1", "tembra-store://x/Counterpart/p1"]
# The keys of each record in the order in which they are written, with values they never have.
WRONG_VALUES = {
    "teammate": {"name": NOT_TEXT, "objectID": NOT_URI, "sessions": NOT_LIST},
    "session": {
        "date": ["2019-03-04T15:30:00Z", "573406200", True, [], {}],
        "flag": NOT_INTEGER,
        "counterpartSentiment": NOT_INTEGER,
        "meetingSentiment": NOT_INTEGER,
        "personalSentiment": NOT_INTEGER,
        "objectID": NOT_URI,
        "tags": NOT_LIST,
        "notes": NOT_LIST,
    },
    "tag": {"emoji": NOT_TEXT, "name": NOT_TEXT, "objectID": NOT_URI},
    "note": {"identifier": NOT_INTEGER, "contentString": NOT_TEXT + [None]},
}
# The keys that may be absent.
OPTIONAL = {("session", "notes")}


def parsed(text):
    def refuse(constant):
        raise ValueError(f"{constant} is no JSON")

    return json.loads(text, parse_constant=refuse)


def example_in(docs):
    """The example that the description of the format shows."""
    found = re.search(r"^```json\n(.*?)^```$", (docs / "backup-format.md").read_text("utf-8"), re.M | re.S)
    if not found:
        sys.exit("docs/backup-format.md shows no example")
    return parsed(found.group(1))


def random_documents(program):
    done = subprocess.run([program, str(RANDOM_DOCUMENTS)], capture_output=True, check=False)
    lines = done.stdout.decode("utf-8").split("\n")[:-1]
    if done.returncode != 0 or len(lines) != RANDOM_DOCUMENTS:
        sys.exit(f"{program} printed {len(lines)} documents and ended with {done.returncode}")
    return [parsed(line) for line in lines]


def small_document(sample):
    """One teammate of the sample, with one meeting that has both tags and notes."""
    for teammate in sample:
        for session in teammate["sessions"]:
            if session["tags"] and session["notes"]:
                return [{**teammate, "sessions": [session]}]
    sys.exit("the sample has no meeting with tags and notes")


def record_in(document, kind):
    teammate = document[0]
    session = teammate["sessions"][0]
    return {"teammate": teammate, "session": session, "tag": session["tags"][0], "note": session["notes"][0]}[kind]


def wrong_documents(right):
    """What the schema must refuse, each with its name."""

    def changed(kind, change):
        document = copy.deepcopy(right)
        change(record_in(document, kind))
        return document

    for kind, keys in WRONG_VALUES.items():
        yield f"a {kind} with an unknown key", changed(kind, lambda record: record.update(email="a@b"))
        for key, values in keys.items():
            if (kind, key) not in OPTIONAL:
                yield f"a {kind} without {key}", changed(kind, lambda record: record.pop(key))
            for value in values:
                name = f"a {kind} whose {key} is {json.dumps(value)}"
                yield name, changed(kind, lambda record: record.update({key: value}))
    for root in (None, {}, "", 5, [None], [[]], [5]):
        yield f"the document {json.dumps(root)}", root


def findings(validator, documents, right):
    for name, document in documents:
        for error in validator.iter_errors(document):
            place = "/".join(str(step) for step in error.absolute_path)
            yield f"{name}: {place}: {error.message}"
    for name, document in wrong_documents(right):
        if validator.is_valid(document):
            yield f"{name} is not refused"
    for kind, keys in WRONG_VALUES.items():
        if list(record_in(right, kind)) != list(keys):
            yield f"a {kind} does not have just the keys {', '.join(keys)}, in this order"


def main():
    try:
        from jsonschema import Draft202012Validator
    except ImportError:
        sys.exit("The Python module jsonschema is missing: install the package python3-jsonschema.")
    docs, sample_file, random_backups = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
    if not sample_file.is_file():
        sys.exit(f"{sample_file} is missing: build everything first.")
    schema = parsed((docs / "backup.schema.json").read_text("utf-8"))
    Draft202012Validator.check_schema(schema)
    sample = parsed(sample_file.read_text("utf-8"))
    documents = [("the sample", sample), ("the example", example_in(docs))]
    for number, document in enumerate(random_documents(random_backups), start=1):
        documents.append((f"random journal {number}", document))
    found = list(findings(Draft202012Validator(schema), documents, small_document(sample)))
    for finding in found:
        print(finding)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
