"""Runs script/bootstrap on pretended systems, and wants it to say what a user can do."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

TOOLS = ["bash", "env", "mktemp", "rm", "tail", "grep", "sed", "sort", "tr"]

# Name, user's number, sudo (None: there is none), what apt-get says, what the user must read.
CASES = [
    ("no sudo", 1000, None, "", ['there is no "sudo" here', "As root, please run:",
                                 "apt-get install --no-install-recommends g++",
                                 "Then run the same command again."]),
    ("not allowed", 1000, 1, "", ['"sudo" did not let you', "sudo apt-get install"]),
    ("no network", 0, None,
     "E: Failed to fetch http://packages.example/g.deb  Temporary failure resolving 'packages.example'",
     ["Temporary failure resolving", "Check the network connection"]),
    ("no network with sudo", 1000, 0, "Err:1 http://packages.example x\n  Could not connect to it",
     ["Check the network connection"]),
    ("unknown package", 0, None, "E: Unable to locate package libexpected-dev",
     ["Your system does not offer: libexpected-dev", "Debian 12 or newer"]),
    ("locked", 0, None, "E: Could not get lock /var/lib/dpkg/lock-frontend",
     ["Another program is installing software"]),
    ("something else", 0, None, "E: You don't have enough free space",
     ["enough free space", "By hand it is:", "    apt-get install --no-install-recommends g++"]),
]


def write_program(path, text):
    path.write_text("#!/bin/bash\n" + text)
    path.chmod(0o755)


def run(script, user, sudo, says):
    with tempfile.TemporaryDirectory() as folder:
        programs = Path(folder)
        for tool in TOOLS:
            found = next(Path(p) / tool for p in ("/usr/bin", "/bin") if (Path(p) / tool).exists())
            (programs / tool).symlink_to(found)
        (programs / "says").write_text(says + "\n")
        write_program(programs / "id", f"echo {user}")
        write_program(programs / "dpkg-query", "exit 1")
        write_program(programs / "apt-get",
                      f'[ "${{3-}}" = install ] && {{ while IFS= read -r l; do echo "$l"; done '
                      f'<"{programs}/says"; exit 100; }}; exit 0')
        if sudo is not None:
            write_program(programs / "sudo",
                          f'[ {sudo} -eq 0 ] || exit 1; [ "$1" != -n ] || shift; '
                          'if [ "$1" = true ]; then exit 0; fi; exec "$@"')
        environment = {"PATH": folder, "HOME": folder, "TMPDIR": folder}
        return subprocess.run(["/bin/bash", script], env=environment, text=True,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=60)


def main():
    failures = 0
    for name, user, sudo, says, wanted in CASES:
        result = run(sys.argv[1], user, sudo, says)
        missing = [text for text in wanted if text not in result.stderr]
        if result.returncode != 1 or missing:
            failures += 1
            print(f"{name}: exit status {result.returncode}, missing {missing} in:\n{result.stderr}")
    return 1 if failures else 0


sys.exit(main())
