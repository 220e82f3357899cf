# SPDX-License-Identifier: MIT
"""Inputs for broken machines, and what a good end is there."""

import math
import re
import sys

sys.path.append(f"{sys.path[0]}/..")
import running

PRELOAD = running.PRELOAD
LABELS = ("       S      |", "   Exp. sM(s)  |", "   Thr. sM(s)  |", "  Delta sM(s)  |",
          "  sM(s) St.dev |")
RULE = "-" * 79


# ---- Inputs ------------------------------------------------------------------------------------

def rows(points, phase):
    for k in range(points):
        s = 2 + 0.25 * k
        theory = math.sin(s + phase)
        delta = 0.05 * math.cos(7 * s)
        yield "".join(f"{v:15.5f}" for v in (s, theory + delta, theory, delta, 0.01 * s)) + "\n"


def layout_1(points=12):
    """Two sets below one header row."""
    text = f" KOVA 1.6.412 analysis\n Log.\n GED curves.\n{RULE}\n{''.join(LABELS)}\n{RULE}\n"
    for number, end in ((1, "=" * 79), (2, RULE)):
        text += f" Curve: ({number}-1)  Scale=0.9500 \n {points} points\n"
        text += "".join(rows(points, number)) + end + "\n"
    return text + " The end.\n"


def layout_2(points=12):
    """Two sets with a header row each."""
    text = f" KOVA 1.6.990 analysis\n Log.\n GED curves.\n{RULE}\n"
    for number in (1, 2):
        text += f" Set: {number}-1 of two\n {points} points\n Scale=0.9500 \n{RULE}\n"
        text += f"{''.join(LABELS)}\n{RULE}\n" + "".join(rows(points, number)) + RULE + "\n"
    return text + "\n The end.\n"


# ---- What is good ------------------------------------------------------------------------------

NO_PIPE = re.compile(rb"Cannot connect to gnuplot pipe: [^\n]+\n\Z")
LOST = running.PIPE_LINE.encode()


def begins_like(found, right):
    """True if every stream is one of the right ones, or the beginning of it."""
    left = sorted(right, key=len, reverse=True)
    for stream in sorted(found, key=len, reverse=True):
        match = next((other for other in left if other.startswith(stream)), None)
        if match is None:
            return False
        left.remove(match)
    return True


def is_part(said, right):
    """True if all lines are lines of the right text, in any order."""
    left = right.splitlines()
    for line in said.splitlines():
        if line not in left:
            return False
        left.remove(line)
    return True


def faults_of(result, right):
    """What is wrong with a run that something happened to, given the same one undisturbed."""
    if result == right:
        return []
    if result.left:
        return ["did not end in time"]
    if result.status not in (0, 1):
        return [f"ended with {result.status}"]
    wrong = []
    if result.status == 0:
        if result.stdout != right.stdout:
            wrong.append("status 0 with another standard output")
        if LOST not in result.stderr:
            if (result.stderr, result.streams) != (right.stderr, right.streams):
                wrong.append("status 0 with another stream or standard error")
        elif not (is_part(result.stderr.replace(LOST, b""), right.stderr) and
                  begins_like(result.streams, right.streams)):
            wrong.append("a lost plot with a wrong stream or standard error")
        return wrong
    said = NO_PIPE.sub(b"", result.stdout)
    if not result.stderr and said == result.stdout:
        wrong.append("status 1 without a message")
    if not right.stdout.startswith(said):
        wrong.append("standard output is not the beginning of the right one")
    if not begins_like(result.streams, right.streams):
        wrong.append("a stream is not the beginning of the right one")
    return wrong


def describe(result):
    return (f"    status {result.status}\n    stdout ...{result.stdout[-200:]!r}\n"
            f"    stderr {result.stderr[-400:]!r}\n    streams {[len(s) for s in result.streams]}")
