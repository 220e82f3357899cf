#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""links.py FOLDER: each link of a document in this folder leads to a file, and to a heading if it
names one."""

import re
import sys
from pathlib import Path

LINK = re.compile(r"\]\(([^):#]*)(?:#([^)]*))?\)")


def headings(document):
    found = re.findall("^#+ (.*)$", document.read_text(), re.M)
    return {re.sub(r"[^\w -]", "", heading).lower().replace(" ", "-") for heading in found}


def complaints(document):
    for name, heading in LINK.findall(document.read_text()):
        target = document.parent / name if name else document
        if not target.exists():
            yield f"no {name}"
        elif heading and heading not in headings(target):
            yield f"no heading #{heading} in {target.name}"


def main():
    documents = sorted(Path(sys.argv[1]).rglob("*.md"))
    wrong = [f"{document}: {text}" for document in documents for text in complaints(document)]
    print(f"{len(documents)} documents, {len(wrong)} dead links", *wrong, sep="\n")
    return not documents or bool(wrong)


sys.exit(main())
