# SPDX-License-Identifier: MIT
"""The fast ways are taken where they can be: instructions of runs that differ in one thing only.

Valgrind counts the same on every machine, however busy it is, so that this is no timed test.
script/bench has the seconds.
"""

import math
import re
import sys
import unittest

sys.path.append(f"{sys.path[0]}/..")
import running

COUNT = ("--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null")
ROWS = 100


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
    logs = []
    result = running.run(
        ["valgrind", *COUNT, "--log-file=log", running.PROGRAM, "--data", "tsms", *arguments,
         "input.out"], {"input.out": table(sets)},
        afterwards=lambda folder: logs.append((folder / "work" / "log").read_text()))
    if result.status != 0:
        raise AssertionError(result)
    return int(re.search(r"I *refs: *([0-9,]+)", logs[0])[1].replace(",", ""))


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


if __name__ == "__main__":
    running.skip_unless_it_runs("valgrind", *COUNT, "true")
    unittest.main(verbosity=2)
