# SPDX-License-Identifier: MIT
"""docs/file-format.md: its examples are read as it says, its labels are the program's."""
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import program

TEXT = (program.ROOT / "docs/file-format.md").read_text()


def blocks(language):
    return re.findall(rf"^```{language}\n(.*?)^```$", TEXT, re.M | re.S)


class FileFormat(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)
        gnuplot = self.folder / "gnuplot"
        gnuplot.write_text("#!/bin/sh\ncat >commands\n")
        gnuplot.chmod(0o755)

    def draw(self, *arguments):
        """What is printed about the reading of the file; it must be read and drawn."""
        path = f"{self.folder}:{os.environ['PATH']}"
        run = subprocess.run([program.PROGRAM, *arguments], cwd=self.folder, text=True,
                             env=os.environ | {"PATH": path}, capture_output=True)
        self.assertEqual((run.returncode, run.stderr), (0, ""), run.stdout)
        commands = (self.folder / "commands").read_text(encoding="latin-1")
        self.assertRegex(commands, r"(?m)^plot  '-'")
        said = re.search(r"(?s)table=1\n(.*?)\d+ Curve groups", run.stdout)[1]
        return re.sub(" +$", "", said, flags=re.M)

    def test_examples(self):
        examples = re.findall(r"^`(layout\d\.out)`:\n\n```text\n(.*?)^```$", TEXT, re.M | re.S)
        answers = blocks("console")
        self.assertEqual(len(examples), 2)
        self.assertEqual(len(answers), 2)
        for (name, text), answer in zip(examples, answers):
            (self.folder / name).write_text(text)
            with self.subTest(name):
                self.assertEqual(self.draw("--curves", "1-1,2-1", name), answer)

    def test_windows_line_ends(self):
        for text, answer in zip(blocks("text"), blocks("console")):
            (self.folder / "windows.out").write_text(text, newline="\r\n")
            self.assertEqual(self.draw("windows.out"), answer)

    def test_writer(self):
        writer, = blocks("python")
        subprocess.run([sys.executable, "-c", writer], cwd=self.folder, check=True)
        command, = re.findall(r"^    gravlex (.* mine\.out)$", TEXT, re.M)
        said = self.draw(*command.split())
        self.assertEqual(said.count("Number of data points: 3"), 2)
        commands = (self.folder / "commands").read_text(encoding="latin-1")
        self.assertEqual(len(re.findall("'-'", commands)), 4)

    def test_labels(self):
        rows = re.findall(r"^\| `( .*?)\\\|` \| .*? \| (.*?) \|$", TEXT, re.M)
        documented = {label + "|": word.strip("`") for label, word in rows}
        labels = dict(re.findall(r'\{"([^"]+\|)", (P_GINT_\w+)\}',
                                 program.source("input/tables.cpp")))
        words = {flag: word for word, flag in
                 re.findall(r'\{"(\w+)", (P_GINT_\w+)\}', program.source("run/selection.cpp"))}
        words |= {"P_GINT_S": "(always read)", "P_GINT_R": "(none)"}
        self.assertEqual(len(labels), 17)
        self.assertEqual(documented, {label: words[flag] for label, flag in labels.items()})
        written = dict(re.findall(r'"(\w+)": "([^"]+\|)"', blocks("python")[0]))
        for word, label in written.items():
            self.assertIn(label, labels)
            self.assertIn(word, (documented[label], "s"))


if __name__ == "__main__":
    unittest.main()
