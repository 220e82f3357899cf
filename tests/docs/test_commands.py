# SPDX-License-Identifier: MIT
"""Every command that the manual pages and the READMEs show runs as it stands.

The blocks of README that begin with "```sh" are drawn by tests/pictures/documents.py.
"""
import gzip
import re
import shutil
import sys
import unittest

import manual
import program
from manual import plain

sys.path.append(f"{sys.path[0]}/../pictures")
import sessions

# Anything that begins so, up to the end of the block, is for a shell.
COMMANDS = re.compile(r"^((?:GNUTERM=|gravlex|ls |rm |zcat ).*)", re.M | re.S)
GOES_ON = "gravlex-watch"  # until its window is closed
WRITES = re.compile(r" (-o|--png|--eps|--svg|>)[ =]?[\w{]")


def of_manual(path):
    source = path.read_text()
    blocks = re.findall(r"^\.Bd -literal.*\n((?s:.*?))^\.Ed|^\.Dl (.*)", source, re.M)
    shown = [block.replace(r"\e", "\\") for block in map("".join, blocks)]
    return shown + [plain(head) for heads, _ in manual.read(path).items_of("EXAMPLES")
                    for head in heads]


def of_readme(path):
    """Its indented blocks."""
    return [re.sub("^    ", "", block, flags=re.M)
            for block in re.findall(r"^(?:    .*\n)+", path.read_text(), re.M)]


class Commands(unittest.TestCase):
    def run_all(self, shown, least):
        found = [match[1] for match in map(COMMANDS.match, shown) if match]
        self.assertGreaterEqual(len(found), least)
        with sessions.x_display() as display:
            for command in found:
                if GOES_ON not in command:
                    with self.subTest(command):
                        self.run_one(command, display)

    def run_one(self, command, display):
        with sessions.work_folder() as folder:
            for sample in program.running.EXAMPLES.glob("*.out"):
                shutil.copy(sample, folder)
            shutil.copy(folder / "ccl4.out", folder / "my.out")
            shutil.copy(folder / "benzene.out", folder / "other.out")
            (folder / "my.out.gz").write_bytes(gzip.compress((folder / "my.out").read_bytes()))
            before = {*folder.iterdir()}
            status, _, err = sessions.run(["sh", "-ec", command], folder, display)
            self.assertEqual((status, sessions.is_quiet(err)), (0, True), err)
            made = [path for path in folder.iterdir()
                    if path not in before and path.suffix]  # .gnuplot-wxt is the window's
            self.assertEqual(bool(made), bool(WRITES.search(command)), made)
            for path in made:
                self.assertGreater(path.stat().st_size, 0, path)

    def test_readme(self):
        self.run_all(of_readme(program.ROOT / "README.md"), 5)
        self.run_all(of_readme(program.ROOT / "examples/README.md"), 1)


def make_test(path):
    return lambda self: self.run_all(of_manual(path), 3)


for PAGE in (program.ROOT / "man").glob("*.1"):
    setattr(Commands, f"test_{PAGE.stem}", make_test(PAGE))


if __name__ == "__main__":
    unittest.main()
