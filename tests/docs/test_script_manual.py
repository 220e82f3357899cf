# SPDX-License-Identifier: MIT
"""The manual page of gravlex-script against the script."""

import re
import subprocess
import unittest

import manual
from program import ROOT

PATH = ROOT / "man/gravlex-script.1"


class Manual(unittest.TestCase):

    def setUp(self):
        self.script = (ROOT / "src/script/gravlex-script").read_text()
        page = subprocess.run(["mandoc", "-T", "ascii", "-O", "width=1000", PATH], check=True,
                              text=True, stdout=subprocess.PIPE).stdout
        self.page = re.sub(r"[ \t]+", " ", re.sub(".\b", "", page))

    def test_lint(self):
        self.assertEqual(manual.lint(PATH), [])

    def test_messages(self):
        messages = re.findall(r"""(?:die|printf) (['"])(?:gravlex-script: )?(.*?)(?:\\n)?\1""",
                              self.script)
        texts = [re.sub(r"\$[a-z0-9]+", "...", text) for _, text in messages]
        texts = [text for text in texts if re.search("[a-z]{2}", text)]
        self.assertGreater(len(texts), 3)
        for text in texts:
            for part in filter(None, text.split("...")):
                self.assertIn(part.strip(), self.page)

    def test_options(self):
        for option in re.findall(r"(?m)^    (--?\w+)\)", self.script):
            self.assertRegex(self.page, rf"(?m)^ {option}\b")

    def test_usage_is_the_synopsis(self):
        usage = re.search("usage='usage: (.*)'", self.script).group(1)
        synopsis = self.page.split("SYNOPSIS\n")[1].split("\n")[0].strip()
        self.assertEqual(synopsis, usage.replace("FILE", "file")
                         .replace("GRAVLEX-ARGUMENTS...", "gravlex-argument ..."))


if __name__ == "__main__":
    unittest.main()
