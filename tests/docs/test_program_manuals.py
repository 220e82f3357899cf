# SPDX-License-Identifier: MIT
"""The manual page of each program beside gravlex says all that is to be said of it alone."""
import re
import subprocess
import unittest

import manual
import program
from listed import LIST, Listed
from manual import plain

LISTED = Listed(LIST)
FOLDER = program.ROOT / "src/programs"
# Those of the reader stand in the page of gravlex.
CORE = program.ROOT / "src/kova"
SHARED = [FOLDER / "program.cpp", CORE / "run/options.cpp", *CORE.glob("output/*.cpp")]
NAMES = sorted(set(LISTED.refused) - {"gravlex"})  # that has tests of its own


def page_path(name):
    return program.ROOT / f"man/{name}.1"


def own_options(name):
    """Spellings and label of those that gravlex does not have."""
    common = {option.spellings for option, _ in LISTED.options("gravlex")}
    return {(option.spellings, option.label) for option, _ in LISTED.options(name)
            if option.spellings not in common}


def option_heads(page):
    for heads, _ in page.items_of("OPTIONS"):
        for head in heads:
            words, _, label = plain(head).partition("=")
            yield frozenset(words.split(", ")), label


def heads_of(page):
    return [head for heads, _ in page.items_of("DIAGNOSTICS") for head in heads]


class Manuals(unittest.TestCase):
    def test_names(self):
        self.assertTrue(NAMES)
        for name in NAMES:
            self.assertEqual(manual.lint(page_path(name)), [], name)

    def test_options(self):
        """Its own are all there; those of gravlex may be as well, refused or with more to say."""
        common = {spelling for option, _ in LISTED.options("gravlex")
                  for spelling in option.spellings}
        for name in NAMES:
            with self.subTest(name):
                heads = option_heads(manual.read(page_path(name)))
                self.assertEqual({head for head in heads if not head[0] <= common},
                                 own_options(name))

    def test_refused_options(self):
        for name in NAMES:
            text = subprocess.run(["mandoc", "-T", "ascii", page_path(name)], check=True,
                                  capture_output=True, text=True).stdout
            shown = set(re.findall(r"--\w[\w-]*\w", re.sub(".\b", "", text)))
            for option in LISTED.refused[name]:
                self.assertIn(option, shown, name)

    def test_messages(self):
        """Those of its own are all there, and there are no others but shared ones."""
        for name in NAMES:
            own = FOLDER.glob(name.removeprefix("gravlex-") + "*.cpp")
            own = {message for message, stream in program.messages(own) if stream == "stderr"}
            shared = {message for message, _ in program.messages(SHARED)}
            heads = heads_of(manual.read(page_path(name)))
            for message in own:
                self.assertTrue(any(manual.matches(message, head) for head in heads), message)
            for head in heads:
                self.assertTrue(any(manual.matches(message, head) for message in own | shared),
                                f"no longer a message of {name}: {plain(head)}")


if __name__ == "__main__":
    unittest.main()
