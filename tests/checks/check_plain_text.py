#!/usr/bin/env python3
"""Checks that no code of src/ lets Qt take a text for rich text.

A name, tag or file name that looks like HTML opens the files that it names, where it is shown as
rich text. So tooltips are set in Toolkit/PlainToolTip alone, and labels are plain.

Usage: check_plain_text.py SOURCE_FOLDER
One line for each breach, then exit status 1.
"""

import re
import sys
from pathlib import Path

TOOL_TIPS = "Toolkit/PlainToolTip.cpp"
# Calls that show a text which Qt takes for rich text if it looks like it.
FORBIDDEN = {
    re.compile(r"(?:->|\.|::)setToolTip\(|\bQToolTip::showText\("): "setPlainToolTip() or showPlainToolTip()",
    re.compile(r"\bset(WhatsThis|StatusTip)\("): "no such text",
    re.compile(r"\bnew QLabel\b|\bQLabel [a-z]\w*[;({]"): "PlainLabel",
    re.compile(r"\bQMessageBox\b|\bQErrorMessage\b|\bQWhatsThis\b"): "Alert",
    re.compile(r"\bQt::(RichText|AutoText|MarkdownText)\b"): "Qt::PlainText",
}
ROLE = re.compile(r"\bQt::ToolTipRole\b")
SUBCLASS = re.compile(r"class (\w+)(?: final)? : public QLabel\b")


def breaches(source):
    for file in sorted(source.rglob("*")):
        if file.suffix not in (".cpp", ".h"):
            continue
        name = file.relative_to(source).as_posix()
        text = file.read_text(encoding="utf-8")
        for number, line in enumerate(text.splitlines(), start=1):
            code = line.split("//")[0]
            for pattern, instead in FORBIDDEN.items():
                if name != TOOL_TIPS and pattern.search(code):
                    yield f"{file}:{number}: use {instead}: {line.strip()}"
        if ROLE.search(re.sub(r"//.*", "", text)) and "plainToolTip(" not in text and name != TOOL_TIPS:
            yield f"{file}: the value of Qt::ToolTipRole is made by plainToolTip()"
        if match := SUBCLASS.search(text):
            body = file.with_suffix(".cpp")
            if not body.is_file() or "setTextFormat(Qt::PlainText)" not in body.read_text(encoding="utf-8"):
                yield f"{file}: the label {match.group(1)} does not set Qt::PlainText"


def main():
    source = Path(sys.argv[1]).resolve()
    if not (source / TOOL_TIPS).is_file():
        sys.exit(f"no {TOOL_TIPS} in {source}")
    found = list(breaches(source))
    for breach in found:
        print(breach)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
