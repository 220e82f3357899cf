# SPDX-License-Identifier: MIT
"""What the tests of the programs beside gravlex share: a folder for each test, in which the program
runs on files with plain names and must leave nothing but what was asked for."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.append(f"{sys.path[0]}/..")
import running
from running import BENZENE, CCL4, PROGRAM, TIME_LIMIT

HOSTILE = ("two words", "it's", 'say "x"', "100%d", "a\nsystem 'touch harm'\n", "|touch harm",
           "-f", "`touch harm`", "$(touch harm)", "back\\", "a\\\nsystem 'touch harm'", "é",
           "<touch harm",
           "x'; system 'touch harm'; '", 'x"; system "touch harm"; "', "#a", "@a", "\x7f")


def table(*sets, labels=("   Exp. sM(s)", "   Thr. sM(s)"), value=float, end=True):
    """A file of layout 2 with one table: sets of 40 points by label, or by label and the labels of
    their own columns."""
    rule = "-" * 60
    text = f" KOVA 1.6.990 analysis\n GED curves.\n{rule}\n"
    for label in sets:
        label, own = label if isinstance(label, tuple) else (label, labels)
        header = "".join(f"{word}  |" for word in ("       S    ", *own))
        rows = "".join(f" {s / 10:8.3f}" + f" {value(s % 7):8.3f}" * len(own) + "\n"
                       for s in range(20, 60))
        text += f" Set: {label} of some\n 40 points\n Scale=0.9500 \n"
        text += f"{rule}\n{header}\n{rule}\n{rows}"
        text += f"{rule}\n" if end or label != sets[-1] else ""
    return text + "\n The end.\n" * end


class ProgramTest(unittest.TestCase):

    def setUp(self):
        home = tempfile.TemporaryDirectory(prefix="gravlex-test-")
        self.addCleanup(home.cleanup)
        self.home = pathlib.Path(home.name)
        self.work = self.home / "work"
        self.work.mkdir()
        (self.home / "ccl4.out").symlink_to(CCL4)
        (self.home / "benzene.out").symlink_to(BENZENE)
        self.env = running.environment(self.home, GNUTERM="unknown")

    def run_program(self, *command, status=0, **more):
        """Runs a program, one of ours by its name, to its end in the folder. Returns its output and
        its complaint."""
        ours = PROGRAM.parent / command[0]
        run = subprocess.run([ours if ours.exists() else command[0], *command[1:]],
                             **{"cwd": self.work, "env": self.env, "stdout": subprocess.PIPE,
                                "stderr": subprocess.PIPE, "stdin": subprocess.DEVNULL,
                                "check": False, "timeout": TIME_LIMIT, **more})
        self.assertEqual(run.returncode, status, (command, run.stderr))
        return run.stdout, run.stderr.decode()

    def refused(self, *command, **more):
        """The one sentence that is said, without the program's name. Nothing is left or changed."""
        before = self.state()
        out, err = self.run_program(*command, **{"status": 1, **more})
        self.assertFalse(out)
        self.assertEqual(self.state(), before)
        self.assertRegex(err, rf"(?s)\A{command[0]}: [^\n].*\n\Z")
        return err[len(command[0]) + 2:-1]

    def state(self):
        return {name: (self.work / name).read_bytes() if (self.work / name).is_file() else None
                for name in self.files()}

    def files(self):
        return sorted(os.listdir(self.work))

    def clear(self):
        for path in self.work.iterdir():
            path.unlink()
