# SPDX-License-Identifier: MIT
"""What every completion has to offer."""
import os
import shutil
import tempfile
import unittest
from pathlib import Path

import program
from listed import LIST, Listed
from terminal import Shell

# Beside the programs that there are one that uses whatever the list can say.
LISTED = Listed(LIST + """
[programs]
gravlex-sample  inputfile...  --png
    --table

[options gravlex-sample]
--name  -n  N-M=TEXT...  Name of a data set

[options gravlex-script gravlex-sample]
--share  -  -  Don't keep it
""")
MADE = tempfile.TemporaryDirectory()  # until the end of the test
LISTED.generate(Path(MADE.name))
WORDS = LISTED.words("kinds")
REMOVALS = {f"!{word}": f"Not: {name}" for word, name in WORDS.items() if word != "all"}
STYLES = {"1": "lines", "2": "points", "3": "lines with points"}
POINTS = {str(number) for number in range(16)}
SETS = {"1-1": "161 points, s from 2 to 18", "2-1": "281 points, s from 6 to 34",
        "3-1": "141 points, s from 6 to 34"}
# The completions ask a program for the data sets.
os.environ["PATH"] = f"{program.PROGRAM.parent}:{os.environ['PATH']}"


def without(words, *names):
    return {word: text for word, text in words.items() if word not in names}


class Completion(unittest.TestCase):
    """The checks. A test of a shell defines offers(line), the words that can take the place of the
    last one of the command line, each with the text that is shown beside it, and completed(line),
    the line as pressing tab leaves it."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        for name in ("fit.png", "result.out"):
            (Path(cls.folder.name) / name).touch()
        shutil.copy(program.running.CCL4, Path(cls.folder.name) / "with blank.out")
        (Path(cls.folder.name) / "subfolder").mkdir()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_options(self):
        for name in LISTED.refused:
            with self.subTest(name):
                self.assertEqual(self.offers(f"{name} -"), LISTED.texts(name))

    def test_options_behind_the_file(self):
        long_options = {word: text for word, text in LISTED.texts("gravlex").items()
                        if word.startswith("--sms")}
        self.assertEqual(self.offers("gravlex result.out --sms"), long_options)

    def test_options_again(self):
        self.assertIn("--name", self.offers("gravlex-sample --name 1-1=a result.out --na"))

    def test_kind_words(self):
        for option in ("--data ", "--dread ", "--dcombine ", "-d ", "--data=", "--dread="):
            with self.subTest(option):
                self.assertEqual(self.offers(f"gravlex {option}"), WORDS)

    def test_kind_words_inside_a_list(self):
        for option in ("--data ", "--data="):
            offered = self.offers(f"gravlex {option}sms,bgl,")
            self.assertEqual(offered, without(WORDS, "sms", "bgl") | REMOVALS)

    def test_removal_words(self):
        offered = self.offers("gravlex --data 'all,!sms,!")
        self.assertEqual(offered, without(REMOVALS, "!sms"))
        offered = self.offers("gravlex --data=all,lint,")
        self.assertEqual(offered, without(WORDS, "all", "lint") | REMOVALS)

    def test_sets(self):
        self.assertEqual(self.offers(r"gravlex --table=3 fit.png with\ blank.out --curves "), SETS)
        self.assertEqual(self.offers(r"gravlex -t 2 with\ blank.out --cread=1-1,"),
                         without(SETS, "1-1"))
        for line in "-t 4 with\\ blank.out --curves ", "result.out --curves ", "none.out -c ":
            with self.subTest(line):
                self.assertEqual(self.offers(f"gravlex {line}"), {})

    def test_plain_words(self):
        self.assertEqual(self.offers("gravlex --term "), LISTED.words("terminal"))
        self.assertEqual(self.offers("gravlex --style_sms "), STYLES)
        self.assertEqual(set(self.offers("gravlex --ptype_sms ")), POINTS)
        self.assertEqual(set(self.offers("gravlex --ptype_sms=1")),
                         {point for point in POINTS if point.startswith("1")})

    def test_one_candidate(self):
        self.assertEqual(self.completed("gravlex --leg"), "gravlex --legend ")
        self.assertRegex(self.completed("gravlex --data all,ts"), "^gravlex --data all,tsms[ ,]?$")
        self.assertRegex(self.completed("gravlex --data=all,ts"), "^gravlex --data=all,tsms[ ,]?$")

    def test_file_names(self):
        self.assertEqual(self.completed("gravlex res"), "gravlex result.out ")
        self.assertEqual(self.completed("gravlex --grid res"), "gravlex --grid result.out ")
        self.assertEqual(self.completed("gravlex with"), r"gravlex with\ blank.out ")
        self.assertEqual(self.completed("gravlex --data sms res"), "gravlex --data sms result.out ")
        self.assertEqual(self.completed("gravlex-script -o fi"), "gravlex-script -o fit.png ")
        self.assertEqual(self.completed("gravlex-sample result.out fi"),
                         "gravlex-sample result.out fit.png ")
        for image in ("--png", "--eps", "--svg"):
            self.assertEqual(self.completed(f"gravlex {image} fi"), f"gravlex {image} fit.png ")
            self.assertEqual(self.completed(f"gravlex {image}=fi"), f"gravlex {image}=fit.png ")
            self.assertEqual(self.completed(f"gravlex {image} sub"), f"gravlex {image} subfolder/")

    def test_no_file_names(self):
        for line in ("gravlex --imgw ", "gravlex -t ", "gravlex --curves ", "gravlex --xmin=",
                     "gravlex-sample -n "):
            with self.subTest(line):
                self.assertEqual(self.completed(line + "fi"), line + "fi")


class OnTerminal(Completion):
    """For a shell that has to be asked by pressing keys: its command line, and what sets it up so
    that control-g shows the line and clears it."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.shell = Shell(cls.command, cls.folder.name, {"PS1": ""})
        cls.shell.press(cls.setup)
        cls.shell.press("echo se''t up\n")
        cls.shell.read_until(r"(?s)set up\n.*ready> ")

    @classmethod
    def tearDownClass(cls):
        cls.shell.close()
        super().tearDownClass()

    def completed(self, line):
        self.shell.press(f"{line}\t\x07")
        return self.shell.read_until("<(.*)>\n")[1]
