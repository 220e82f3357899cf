#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The seeds of the fuzz targets, kept one a line as NAME TEXT in fuzz/seeds/TARGET.txt, in the
notation of bytes that tests/cases.txt explains. Those of `files` are files; random inputs of
tests/agree come to them, since bytes alone take long to grow into a table.

    seeds.py unpack FOLDER              writes them to FOLDER/TARGET/NAME
    seeds.py keep TARGET NAME FILE      adds a finding
"""

import pathlib
import random
import shutil
import sys

FUZZ = pathlib.Path(__file__).resolve().parent
TESTS = FUZZ.parent / "tests"
sys.path[:0] = [str(TESTS), str(TESTS / "agree")]
import case_file
import inputs
import options

GROWN = 200


def grown(number):
    """An input of the target `files`: a line of settings, then the file."""
    chance = random.Random(number)
    content, *about = inputs.input_file(chance)
    settings = " ".join(options.command_line(chance, *about, "")).replace("=", " ")
    return settings.encode("latin-1", "replace") + b"\n" + content


def unpack(folder):
    for path in (FUZZ / "seeds").glob("*.txt"):
        target = pathlib.Path(folder) / path.stem
        target.mkdir(parents=True, exist_ok=True)
        for line in path.read_text().splitlines():
            name, _, text = line.partition(" ")
            (target / name).write_bytes(case_file.unescaped(text).encode("latin-1"))
    files = pathlib.Path(folder) / "files"
    shutil.copytree(FUZZ / "seeds" / "files", files)
    for number in range(GROWN):
        (files / f"grown-{number}").write_bytes(grown(number))


def keep(target, name, file):
    text = case_file.escaped(pathlib.Path(file).read_bytes().decode("latin-1"))
    with (FUZZ / "seeds" / f"{target}.txt").open("a") as seeds:
        seeds.write(f"{name} {text}".rstrip() + "\n")


if __name__ == "__main__":
    {"unpack": unpack, "keep": keep}[sys.argv[1]](*sys.argv[2:])
