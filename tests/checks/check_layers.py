#!/usr/bin/env python3
"""Checks that every folder of src/ includes only what its layer may see.

All libraries share the include root src/, so a header that needs no linking could be used across
a layer unnoticed by the linker; and the headers of SQLite and ICU lie where every compiler looks.

Usage: check_layers.py SOURCE_FOLDER QT_HEADERS...
QT_HEADERS are folders; the one that holds QtCore/ counts. One line for each breach, then exit status 1.
"""

import re
import sys
from pathlib import Path

# What each folder may include besides itself and the standard library. A folder that is not listed
# is not part of the program. "Qt..." names a module of Qt, lower case a library of the system.
CORE = {"QtCore", "expected"}
SCREEN = CORE | {"QtGui", "QtWidgets"}
LAYERS = {
    "Foundation": CORE | {"icu", "rapidjson"},
    "Store": CORE | {"sqlite", "Foundation"},
    "Model": CORE | {"plist", "Foundation", "Store"},
    "Toolkit": SCREEN | {"QtSvg", "Foundation"},
    "Bindings": SCREEN | {"Foundation", "Store", "Toolkit"},
    "Preferences": SCREEN | {"Foundation", "Toolkit"},
    "Backup": SCREEN | {"Foundation", "Store", "Model", "Toolkit"},
    "Tags": SCREEN | {"Foundation", "Store", "Model", "Toolkit", "Bindings", "Preferences"},
    "MainWindow": SCREEN
    | {"Foundation", "Store", "Model", "Toolkit", "Bindings", "Preferences", "Backup", "Tags"},
    "Application": SCREEN
    | {"QtNetwork", "Foundation", "Store", "Model", "Toolkit", "Preferences", "Backup", "Tags"}
    | {"MainWindow"},
}
ALONE_IN_SRC = {"main.cpp": SCREEN | {"Application"}}

SYSTEM_HEADERS = {
    re.compile(r"sqlite3(ext)?\.h|SQLiteCpp/.*"): "sqlite",
    re.compile(r"unicode/.*"): "icu",
    re.compile(r"tl/expected\.hpp"): "expected",
    re.compile(r"rapidjson/.*"): "rapidjson",
    re.compile(r"plist/.*"): "plist",
    re.compile(r"(Qt[A-Z]\w*)/.*"): None,  # the module is the folder's name
}
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')


def modules_by_header(qt_headers):
    """Which module of Qt a header belongs to, as the installed headers tell."""
    return {
        header.name: module.name
        for module in qt_headers.glob("Qt[A-Z]*")
        for header in module.iterdir()
        if header.is_file()
    }


def needed_layer(project_path, system_path, qt_modules):
    """The name under which the table lists an included file; None for the standard library."""
    if project_path:
        return project_path.split("/")[0]
    if "/" not in system_path and system_path in qt_modules:
        return qt_modules[system_path]
    for pattern, library in SYSTEM_HEADERS.items():
        if match := pattern.fullmatch(system_path):
            return library or match.group(1)
    return None


def includes(file):
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), start=1):
        if match := INCLUDE.match(line):
            yield number, match.group(1), match.group(2)


def allowed_in(relative):
    if len(relative.parts) == 1:
        return ALONE_IN_SRC.get(relative.name)
    room = relative.parts[0]
    return LAYERS[room] | {room} if room in LAYERS else None


def breaches(source, qt_modules):
    for file in sorted(source.rglob("*")):
        if file.suffix not in (".cpp", ".h"):
            continue
        relative = file.relative_to(source)
        allowed = allowed_in(relative)
        if allowed is None:
            yield f"{file}: this folder is not in the table of layers"
            continue
        for number, project_path, system_path in includes(file):
            where = f"{file}:{number}"
            if project_path and not (source / project_path).is_file():
                if not project_path.endswith(".moc"):
                    yield f'{where}: "{project_path}" does not lie under {source}'
                continue
            layer = needed_layer(project_path, system_path, qt_modules)
            if layer and layer not in allowed:
                yield f"{where}: {relative.parts[0]} may not see {layer} ({project_path or system_path})"


def main():
    source = Path(sys.argv[1]).resolve()
    qt_headers = [Path(folder) for folder in sys.argv[2:] if (Path(folder) / "QtCore").is_dir()]
    if not qt_headers or not any(source.rglob("*.cpp")):
        sys.exit(f"no sources in {source}, or no headers of Qt in {sys.argv[2:]}")
    found = list(breaches(source, modules_by_header(qt_headers[0])))
    for breach in found:
        print(breach)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
