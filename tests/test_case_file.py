#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The notation of the cases: what is written can be read again, nothing unknown is taken for
text, and every case is written as --accept would write it.
"""

import pathlib
import random
import shutil
import subprocess
import tempfile
import unittest

import case_file

TESTS = pathlib.Path(__file__).resolve().parent
CASES = sorted(path for path in (TESTS / "cases").glob("*/*") if path.is_file())
# Whatever means something to the notation, and much of it next to each other.
WORDS = [*map(chr, range(256)), " ", "\n", "\n", "\n\n", "\\", "\\\n", "\\s", "==", "== ",
         "\n== x\n", "\n@echo\n", "@", ", ", "' ", "x" * 79, "x" * 80, "-" * 127, "-" * 128,
         "ab, " * 60, "\nplot \n1 2\nset \n", "1 2\n", "0 types of data have been found:\n",
         "0 types of data are subject to process:\n",
         *(case_file.block_text(block, "") for block in case_file.BLOCKS.values())]


def loaded(text):
    with tempfile.NamedTemporaryFile() as file:
        file.write(text.encode("latin-1"))
        file.flush()
        return case_file.load(pathlib.Path(file.name))


class Notation(unittest.TestCase):
    def test_all_that_is_written_can_be_read(self):
        drawn = random.Random(1)
        for _ in range(3000):
            data = "".join(drawn.choices(WORDS, k=drawn.randrange(9))).encode("latin-1")
            case = case_file.Case("# why\n", [], {}, {}, {})
            text = case_file.written(case, {"stdout": data})
            self.assertEqual(loaded(text).expected, {"stdout": data} if data else {}, text)

    def test_what_is_unknown_is_refused(self):
        for text in ("--grid\n", "#\n--grid\n", "# why\n== stdotu\n", "# why\n==stdout\n",
                     "# why\n== stdout\n== stdout\n", "# why\n== status x\n",
                     "# why\n== run\n==x\n",
                     *(f"# why\n== stdout\n{line}" for line in (
                         "no end", "blank \n", "tab\t\n", "cr\r\n", "\xc5\n", "\\q\n", "\\x5\n",
                         "@wrong\n", "@echo wrong=1\n", "@echo lw='1\n", "@data again\n"))):
            with self.assertRaises(case_file.Refused, msg=text):
                loaded(text)


class Files(unittest.TestCase):
    def test_cases_are_as_accept_would_write_them(self):
        self.assertGreater(len(CASES), 600)
        for path in CASES:
            case = case_file.load(path)
            self.assertEqual(case_file.written(case, case.expected), path.read_text(), path)

    def test_inputs_are_used(self):
        used = {name for path in CASES for name in case_file.load(path).inputs}
        self.assertEqual(used, {f"inputs/{path.name}" for path in (TESTS / "inputs").iterdir()})

    @unittest.skipUnless(shutil.which("shellcheck"), "there is no shellcheck")
    def test_gnuplots_are_good_shell(self):
        scripts = {case_file.load(path).given.get("gnuplot script") for path in CASES} - {None}
        for script in scripts:
            found = subprocess.run(["shellcheck", "-"], input=script, check=False,
                                   stdout=subprocess.PIPE)
            self.assertEqual(found.stdout, b"")


if __name__ == "__main__":
    unittest.main()
