#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""spdx.py SOURCES: every source, script, build file and manual page names its licence at the top.

The whole-program cases and the seeds of the fuzz targets are data.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(sys.argv[1])
NAMED = re.compile(r"\.(cpp|h|c|py|sh|bash|fish|cmake|dict|1)$|CMakeLists\.txt$|completions/")
DATA = re.compile(r"tests/cases/.*/|fuzz/seeds/")
# In whatever starts a comment there, on the first line or behind the one that names the shell.
LICENCE = re.compile(rb'(#[!c][^\n]*\n)?(//|#|\.\\") SPDX-License-Identifier: MIT\n')
SKIPPED = 77


def tracked():
    git = ["git", "-c", f"safe.directory={ROOT}", "-C", ROOT, "ls-files", "-z"]
    try:
        listed = subprocess.run(git, check=True, stdout=subprocess.PIPE, text=True).stdout
    except (OSError, subprocess.CalledProcessError):
        print("not a checkout, or no git")
        sys.exit(SKIPPED)
    return [name for name in listed.split("\0") if name and (ROOT / name).is_file()]


def main():
    checked, missing = 0, []
    for name in tracked():
        text = (ROOT / name).read_bytes()
        if DATA.match(name) or not (NAMED.search(name) or text.startswith(b"#!")):
            continue
        checked += 1
        if not LICENCE.match(text):
            missing.append(name)
    print(f"{checked} files, {len(missing)} without a licence:", *missing, sep="\n")
    return checked == 0 or missing != []


sys.exit(main())
