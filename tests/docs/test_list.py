# SPDX-License-Identifier: MIT
"""The list that the completions are made of says what the programs say of themselves."""
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

import program
from listed import LIST, Listed

BUILD = Path(program.PROGRAM).parent
LISTED = Listed(LIST)


def without_kinds(text):
    return re.sub(r" \(int,.*\)", "", text)


def shown(options):
    return {(option.spellings, option.label, without_kinds(option.text)) for option in options}


class List(unittest.TestCase):
    def test_programs(self):
        pages = {page.stem for page in (program.ROOT / "man").glob("*.1")}
        self.assertEqual(set(LISTED.refused), pages)

    def test_options(self):
        for name in LISTED.refused:
            with self.subTest(name):
                listed = [option for option, _ in LISTED.options(name)]
                self.assertEqual(shown(listed), shown(program.options(BUILD / name)))

    def test_usage(self):
        for line in LISTED.sections["programs"]:
            name, inputs = line.split()[:2]
            text = subprocess.run([BUILD / name, "--help"], capture_output=True, text=True,
                                  check=True).stdout
            self.assertTrue(text.startswith(f"Usage: {name} [options...] {inputs}\n"), name)

    def test_types(self):
        known = set(LISTED.sections) | {"", "file", "sets"}
        for name, refused in LISTED.refused.items():
            self.assertLessEqual({kind for _, kind in LISTED.options(name)}, known)
            self.assertLessEqual(set(refused), set(LISTED.texts("gravlex")))

    def test_kinds(self):
        words = {word: name for word, (name, _) in program.kind_words().items()}
        listed = LISTED.words("kinds")
        self.assertEqual(listed, words | {"all": listed["all"]})

    def test_built(self):
        with tempfile.TemporaryDirectory() as folder:
            LISTED.generate(Path(folder))
            for shell in "bash", "fish", "zsh":
                run = subprocess.run(["diff", "-r", f"{folder}/{shell}",
                                      BUILD / "completions" / shell], capture_output=True)
                self.assertEqual((run.returncode, run.stdout), (0, b""))


if __name__ == "__main__":
    unittest.main()
