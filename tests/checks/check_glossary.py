#!/usr/bin/env python3
"""Checks that the classes that docs/glossary.md names are in the folders that it names.

Usage: check_glossary.py GLOSSARY SOURCE_FOLDER
One line for each row that is wrong, then exit status 1.
"""

import re
import sys
from pathlib import Path

NAME = re.compile(r"`([A-Za-z][A-Za-z /]*)`")


def rows(glossary):
    """The cells of the tables' rows, without headings: what, class, where."""
    for number, line in enumerate(glossary.read_text(encoding="utf-8").splitlines(), start=1):
        if line.startswith("| ") and not line.startswith("| what |"):
            yield number, [cell.strip() for cell in line.strip("|").split("|")]


def mistakes(glossary, source):
    headers = {header.stem: header.relative_to(source) for header in source.rglob("*.h")}
    for number, (_, classes, folders) in rows(glossary):
        places = NAME.findall(folders)
        for name in NAME.findall(classes):
            if not name[0].isupper():
                continue  # A member of the class beside it.
            if name not in headers:
                yield f"{glossary}:{number}: there is no class {name}"
            elif not any(str(headers[name]).startswith(place) for place in places):
                yield f"{glossary}:{number}: {name} is in {headers[name].parent}/"
        for place in places:
            if not (source / place).is_dir() and not (source / f"{place}.h").is_file():
                yield f"{glossary}:{number}: there is no {place} in {source}"


def main():
    found = list(mistakes(Path(sys.argv[1]), Path(sys.argv[2])))
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
