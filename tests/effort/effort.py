#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The fast ways are taken where they can be: instructions of runs that differ in one thing only.

Valgrind counts the same on every machine, however busy it is, so that this is no timed test.
script/bench has the seconds.
"""

import argparse
import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROWS = 100
SWALLOW = "#!/bin/sh\nexec cat > /dev/null\n"


def table(sets):
    """A table of layout 2; a data set is a list of rows of texts, an abscissa and a value."""
    text = [" KOVA v1.7.55 analysis of gas electron diffraction data\n GED curves.\n ==========\n"]
    for number, rows in enumerate(sets, 1):
        text.append(f" Set: {number}-1 \n Scale=1.0 fitted\n ----------------\n"
                    "       S      |   Thr. sM(s)  |\n ----------------\n")
        text.extend(f" {s} {y}\n" for s, y in rows)
        text.append(" ----------------\n")
    return "".join(text)


def data_set(abscissa=0, number="{:.7f}", factor=1.0):
    """A curve whose abscissae belong to one of any number of instruments."""
    return [(number.format((abscissa + 2 + k * 0.2) * factor),
             number.format(math.sin(k / 5) * factor)) for k in range(ROWS)]


def instructions(sets, *arguments):
    with tempfile.TemporaryDirectory(prefix="gravlex-effort-") as name:
        folder = pathlib.Path(name)
        (folder / "input.out").write_text(table(sets))
        (folder / "gnuplot").write_text(SWALLOW)
        (folder / "gnuplot").chmod(0o755)
        subprocess.run(
            ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
             "--log-file=log", PROGRAM, "--data", "tsms", *arguments, "input.out"],
            cwd=folder, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            env=os.environ | {"PATH": f"{folder}:{os.environ['PATH']}"})
        log = (folder / "log").read_text()
        return int(re.search(r"I *refs: *([0-9,]+)", log)[1].replace(",", ""))


class Effort(unittest.TestCase):

    def ratio(self, one, other):
        """Of the instructions for the data themselves."""
        return (instructions(*one) - Effort.start) / (instructions(*other) - Effort.start)

    @classmethod
    def setUpClass(cls):
        cls.start = instructions([data_set()[:2]])

    def test_stacking_grows_with_the_sets(self):
        for instruments in (1, 2):
            def work(count):
                sets = [data_set(k % instruments) for k in range(count)]
                return sets, "--ccombine", ",".join(f"{k + 1}-1" for k in range(count))
            self.assertLess(self.ratio(work(80), work(40)), 2.2)

    def test_plain_numbers_are_read_plainly(self):
        plain = [data_set() for _ in range(10)]
        signed = [data_set(number="{:+.7f}") for _ in range(10)]
        self.assertLess(self.ratio((plain,), (signed,)), 0.6)

    def test_everyday_numbers_are_written_as_integers(self):
        def work(factor):
            return [data_set(k, "{:.7e}", factor) for k in range(10)], "--png", "a.png"
        self.assertLess(self.ratio(work(1.0), work(1e15)), 0.9)

    def test_abscissae_of_two_instruments_are_written_once(self):
        two = [data_set(k % 2) for k in range(12)]
        three = [data_set(k % 3) for k in range(12)]
        self.assertLess(self.ratio((two,), (three,)), 0.93)


PROGRAM = None

if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, type=os.path.abspath)
    PROGRAM = parser.parse_args().program
    if not shutil.which("valgrind") or subprocess.run(
            ["valgrind", "--tool=cachegrind", "--cachegrind-out-file=/dev/null", "true"],
            check=False, capture_output=True).returncode:
        print("valgrind is missing or does not run here")
        sys.exit(77)
    unittest.main(argv=[sys.argv[0], "--verbose"])
