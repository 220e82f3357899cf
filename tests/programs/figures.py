# SPDX-License-Identifier: MIT
"""Runs of gravlex-figure with the real gnuplot, and what is in its files."""
import dataclasses
import math
import re
import shutil
import subprocess
import sys
import zlib
from pathlib import Path

sys.path.append(f"{sys.path[0]}/..")
import running
from running import BENZENE, CCL4, PROGRAM

FIGURE = PROGRAM.with_name("gravlex-figure")
GNUPLOT = shutil.which("gnuplot")
# The real one; what it reads is kept.
KEEPS_COMMANDS = f'#!/bin/sh\ncat "$2" >>"$RECORD/commands"\nexec {GNUPLOT} "$@"\n'.encode()
ONE_PLOT = ("--data", "sms,tsms,dsms", "--curves", "1-1,2-1", CCL4)
CIRCLES = ("-d", "sms", "-c", "1-1", CCL4)


@dataclasses.dataclass
class Figure:
    status: int
    stderr: str
    files: dict  # content by name, of what was not there before or is another now
    commands: str


def figure(*arguments, files=(), gnuplot=KEEPS_COMMANDS, command=(FIGURE,), **more):
    """Its output must always be empty, and nothing must be left running."""
    found = {}

    def look(folder):
        for path in sorted((folder / "work").iterdir()):
            given = dict(files).get(path.name, b"")
            if path.is_file() and path.read_bytes() != (given if isinstance(given, bytes)
                                                        else given.encode()):
                found[path.name] = path.read_bytes()

    result = running.run([*command, *arguments], files, gnuplot, afterwards=look, **more)
    assert (result.stdout, result.left) == (b"", False), result
    commands = result.recorded.get("commands", b"").decode()
    return Figure(result.status, result.stderr.decode(), found, commands)


def drawn(*arguments, **more):
    """What a run has written that must go well: one file, or the files by their names."""
    result = figure(*arguments, **more)
    assert (result.status, result.stderr) == (0, ""), result.stderr
    return result


def content(name, *arguments, **more):
    return drawn("-o", name, *arguments, **more).files[name]


def tool(*command, given=b""):
    return subprocess.run(command, input=given, capture_output=True, check=True).stdout.decode()


# ---- PDF ---------------------------------------------------------------------------------------

def words(pdf):
    """Each word with its left, top, right and bottom, in points from the upper left corner."""
    text = tool("pdftotext", "-bbox", "-", "-", given=pdf)
    found = re.findall(r'<word xMin="(.*?)" yMin="(.*?)" xMax="(.*?)" yMax="(.*?)">(.*?)</word>',
                       text)
    return [(*map(float, box), word) for *box, word in found]


def page_size(pdf):
    text = tool("pdftotext", "-bbox", "-", "-", given=pdf)
    return tuple(map(float, re.search(r'<page width="(.*?)" height="(.*?)">', text).groups()))


def letter_sizes(pdf):
    """The sizes of its letters in points."""
    sizes = set()
    for stream in re.findall(rb"stream\r?\n(.*?)endstream", pdf, re.S):
        try:
            text = zlib.decompressobj().decompress(stream)
        except zlib.error:
            continue
        for a, b in re.findall(rb"(\S+) (\S+) \S+ \S+ \S+ \S+ Tm", text):
            sizes.add(round(math.hypot(float(a), float(b)), 2))
    return sizes


def frames(commands, width, height):
    """The frames of the panels, as the words above."""
    ends = [[float(value) for value in re.findall(rf"set {side}margin at screen (\S+)", commands)]
            for side in "ltrb"]
    return [(left * width, (1 - top) * height, right * width, (1 - bottom) * height)
            for left, top, right, bottom in zip(*ends, strict=True)]


# ---- Input -------------------------------------------------------------------------------------

def table(rows):
    """An output of KOVA with one table of one set: s, experimental and theoretical sM(s)."""
    header = "       S      |   Exp. sM(s)  |   Thr. sM(s)  |"
    lines = ["  KOVA 1.6.990  test", "", " Table 1. GED curves.", "=" * 40, " Set: 1-1  (text)",
             " Scale=1.0  (text)", "-" * 40, header, "-" * 40]
    lines += [" ".join(f"{value:>15}" for value in row) for row in rows]
    return "\n".join([*lines, "-" * 40, ""]) + "\n"
