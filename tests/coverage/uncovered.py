#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""uncovered.py COVERAGE.json: what no test has taken, but for what tests/uncovered.txt explains.

That list names a file and the text of a line, "src/FILE: TEXT", with the reason indented below;
a line that is covered after all must leave it.
"""

import json
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def uncovered(report):
    """The lines that were never run, or of which a branch was never taken, as the list has them."""
    for file in report["files"]:
        texts = (ROOT / file["file"]).read_text().split("\n")
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            branches = [b for b in line["branches"] if not b["throw"]]
            if line["count"] == 0 or any(b["count"] == 0 for b in branches):
                yield f"{file['file']}: {texts[line['line_number'] - 1].strip()}", line


def main():
    listed = (ROOT / "tests" / "uncovered.txt").read_text().split("\n")
    explained = {line for line in listed if line.startswith("src/")}
    found = dict(uncovered(json.loads(Path(sys.argv[1]).read_text())))
    for text in sorted(found.keys() - explained):
        print(f"not covered, line {found[text]['line_number']}: {text}")
    for text in sorted(explained - found.keys()):
        print(f"covered after all: {text}")
    print(f"{len(found)} places not covered, {len(found.keys() & explained)} of them explained")
    return found.keys() != explained


if __name__ == "__main__":
    sys.exit(main())
